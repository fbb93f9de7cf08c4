#include "support/freshstate.h"

#include "adf/directory.h"
#include "base/message.h"
#include "base/settings.h"
#include "missassembler/bounds.h"
#include "missassembler/decode.h"
#include "missassembler/labels.h"
#include "output/profile.h"
#include "shell/reset.h"
#include "support/capture.h"

namespace vantorel::test {

void freshstate() {
    Capture narration;
    reset(iResetAll);
    // What outlives even a reset.
    psFiles.clear();
    cSaveDir.clear();
    isROMType = RomType::iUnset;
    isProfileROM = {-1, -1, -1, -1};
    sMnemonic = {};
    freemissassembler();
    freestoplabels();
    iMissMin = iMissMax = iMissMinLimit = iMissMaxLimit = 0;
    iDiotMode = 0;
    iLogLevel = 1;
}

} // namespace vantorel::test
