#pragma once

#include <exception>
#include <string>

namespace tavrin {

/// The name of the exception's class, without its namespace.
std::string nameOfException(const std::exception& exception);
/// What the exception that it wraps says; empty for a plain one.
std::string detailsOfException(const std::exception& exception);

} // namespace tavrin
