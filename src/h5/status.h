#pragma once

// Status codes of the library; ORVGetStatusText gives their texts.

namespace orvio {

inline constexpr int kOk = 0;
inline constexpr int kFail = 1;
inline constexpr int kFileOpenError = 4;
inline constexpr int kInvalidVersionString = 9;
inline constexpr int kNotApplicable = 13;
inline constexpr int kGroupNotOpened = 1010;  // handed to iteration callbacks only

}  // namespace orvio
