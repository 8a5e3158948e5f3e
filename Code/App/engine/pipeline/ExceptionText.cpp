#include "engine/pipeline/ExceptionText.h"

#include <fmt/core.h>

#include <cstdlib>
#include <cxxabi.h>
#include <memory>
#include <typeinfo>

namespace tavrin {

std::string nameOfException(const std::exception& exception) {
    int status = 0;
    const std::unique_ptr<char, void (*)(void*)> readable(
        abi::__cxa_demangle(typeid(exception).name(), nullptr, nullptr, &status), std::free);
    const std::string name = status == 0 ? readable.get() : typeid(exception).name();
    const std::size_t scope = name.rfind("::");
    return scope == std::string::npos ? name : name.substr(scope + 2);
}

std::string detailsOfException(const std::exception& exception) {
    try {
        std::rethrow_if_nested(exception);
    } catch (const std::exception& inner) {
        return fmt::format("{}: {}", nameOfException(inner), inner.what());
    } catch (...) {
        return "unknown";
    }
    return {};
}

} // namespace tavrin
