#include "actions/InputContext.h"

#include "store/rows/FileMO.h"

namespace tavrin {

std::string InputContext::inputPath() const { return fileMo ? fileMo->fullPath() : path; }

} // namespace tavrin
