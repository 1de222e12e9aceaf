// The language server with its streams.
#pragma once

#include <string>

namespace kztns::lsp {

// Serves one client until it says exit, its stream ends or is broken. One thread reads, one
// checks texts, so that requests are answered meanwhile. Returns an ExitStatus.
int serve(int input, int output, const std::string &documents);

}  // namespace kztns::lsp
