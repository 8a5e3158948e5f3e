#pragma once

namespace tavrin {

/// What every start of the program sets up once the QApplication is there.
struct ApplicationSetup {
    static void names();
    static void looks();
};

} // namespace tavrin
