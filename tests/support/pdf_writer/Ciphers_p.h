// MD5 and RC4, for the oldest kind of encrypted test file.
#pragma once

#include <string>
#include <string_view>

namespace velko::testing {

std::string Md5(std::string_view strData); // 16 bytes
std::string Rc4(std::string_view strKey, std::string_view strData);

}
