#pragma once

namespace tavrin {

class EngineHost;

/// The failures of the last run, as the main context knows them.
struct ProcessingErrorsManager {
    static bool areThereErrors(EngineHost& host);
};

} // namespace tavrin
