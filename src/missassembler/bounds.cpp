#include "missassembler/bounds.h"

namespace vantorel {

uint32_t iMissMin = 0;
uint32_t iMissMax = 0;
uint32_t iMissMinLimit = 0;
uint32_t iMissMaxLimit = 0;

} // namespace vantorel
