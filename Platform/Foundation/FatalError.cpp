#include "Platform/Foundation/FatalError.h"

#include <cstdio>
#include <cstdlib>

namespace kelvara {

namespace {

[[noreturn]] void stop(const char* category, std::string_view text)
{
    std::fprintf(stderr, "%s%s%.*s\n", category, text.empty() ? "" : ": ", static_cast<int>(text.size()), text.data());
    std::fflush(stderr);
    std::abort();
}

} // namespace

void fatalError(std::string_view sentence)
{
    stop("Fatal error", sentence);
}

void assertionFailure(std::string_view message)
{
    stop("Assertion failed", message);
}

} // namespace kelvara
