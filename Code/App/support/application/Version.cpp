#include "support/application/Version.h"

namespace tavrin {

const char* const programVersion = TAVRIN_VERSION;

} // namespace tavrin
