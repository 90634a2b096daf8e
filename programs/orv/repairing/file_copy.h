// A private copy of a file that nobody writes to meanwhile.
#pragma once

#include <string>

namespace orvio::program {

/// Copies the bytes of a regular file over another one, which `told_as` stands for in messages. The file is opened for
/// reading alone. Throws Trouble.
void CopyFile(const std::string& from, const std::string& to, const std::string& told_as);

/// Whether two files hold the same bytes.
bool HaveSameBytes(const std::string& a, const std::string& b);

}  // namespace orvio::program
