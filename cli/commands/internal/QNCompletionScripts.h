#pragma once
// The files of cli/completion; the build puts their text into a source.

#include <string_view>

namespace quillon {

extern const std::string_view kCompletionForBash;
extern const std::string_view kCompletionForZsh;
extern const std::string_view kCompletionForFish;

}  // namespace quillon
