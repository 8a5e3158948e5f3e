#pragma once

namespace tavrin {

/// Opens those of the descriptors 0, 1 and 2 that the caller of the program has closed on /dev/null, so that
/// nothing opened later gets their number and is taken for standard output. To be called before anything else
/// opens a descriptor.
void openStandardDescriptors();

} // namespace tavrin
