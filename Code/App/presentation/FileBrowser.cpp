#include "presentation/FileBrowser.h"

namespace tavrin {

void FileBrowser::reveal(const std::string&) {}
void FileBrowser::open(const std::string&) {}

} // namespace tavrin
