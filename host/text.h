// Text services of the host.
#pragma once

/// Byte length of the character that begins at `text`, in the local encoding. At least 1, also for
/// a byte that begins no character.
int VELTMBmbclen_A(const char* text);
