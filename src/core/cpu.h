// Processor class of this run, for the one dispatch point of each family.
#pragma once

namespace zvp {

enum class Isa : int { Scalar = 0, SSE41 = 1, AVX2 = 2, AVX512 = 3 };

// The best instruction set available here, capped by setIsaCap.
Isa cpuIsa();

// Caps the instruction set the dispatchers may choose (tests compare every
// path with its scalar twin). Returns the previous cap.
Isa setIsaCap(Isa cap);

}  // namespace zvp
