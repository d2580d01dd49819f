// The run-length code of one colour plane in a Macintosh icon family.
//
// A packet begins with a control byte c. Below 0x80: c + 1 bytes follow as they are. From 0x80 on: one byte follows
// that stands c - 0x80 + 3 times.
#pragma once

#include "base/bytes.h"

namespace pelorin {

/// Decodes packets until `plane` is full. A packet that is larger than what is left ends the plane, which keeps what it
/// has; the next plane goes on behind that packet's control byte (and the byte to repeat). False when the input ends
/// before.
[[nodiscard]] bool DecodeIcnsPlane(ByteReader& in, MutableByteSpan plane);

/// Appends the plane's packets. The plane is walked from its end, so what does not fit a packet stands in front; runs
/// are of 3 to 128 bytes.
void EncodeIcnsPlane(ByteSpan plane, Bytes& out);

} // namespace pelorin
