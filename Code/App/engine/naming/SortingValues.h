#pragma once

#include "support/values/PropertyValue.h"

#include <string>

namespace tavrin {

/// The values that sort orders go by, for a path rather than a row. Sort settings come in pairs, the even one
/// ascending and the odd one descending, and both of a pair give one value. Any thread.
class SortingValues {
  public:
    /// `retrieveEXIFData` and `sumFolders` are the global settings of that meaning.
    SortingValues(bool retrieveEXIFData, bool sumFolders) : readsDates(retrieveEXIFData), sums(sumFolders) {}

    /// A text (name, size, smart name, random) or a number of seconds since 2001-01-01 UTC (dates); the text
    /// "cheers" for a setting outside 0 to 12.
    [[nodiscard]] PropertyValue getSortingValueForPath(const std::string& path, int andSetting) const;
    /// A new random UUID (RFC 4122, version 4) in its usual text form.
    static std::string createUUID();
    /// Seconds since 2001 as "%020.4lf".
    static std::string formatDate(double date);

  private:
    bool readsDates;
    bool sums;
};

} // namespace tavrin
