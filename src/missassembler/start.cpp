#include "missassembler/start.h"

#include "base/message.h"
#include "hash/library.h"
#include "missassembler/decode.h"
#include "missassembler/labels.h"

#include <utility>

namespace vantorel {

namespace {

constexpr const char* cMnemonicFile = "missassemble.ini";

void loadmnemonics() {
    auto ini = loadinifile(findhashfile(cMnemonicFile));
    if (ini) sMnemonic = InstructionTable(MnemonicTable(std::move(*ini)));
}

} // namespace

int initmissassembler() {
    const bool isloaded = sMnemonic.names().iMnemonicCnt() != 0;
    if (!sMnemonic.names().isloaded()) loadmnemonics();
    if (!sMnemonic.names().isloaded()) {
        message(kResult, "No missassembler file\n");
        return 1;
    }
    if (!sMnemonic.names().hasmnemonics()) {
        message(kProgress, "No mnemonics\n");
        return 1;
    }
    const int32_t count = sMnemonic.names().iMnemonicCnt();
    message(kProgress, isloaded ? "%d mnemonics already loaded\n" : "%d mnemonics loaded\n", count);
    freestoplabels();
    freemissassembler();
    return 0;
}

bool readymissassembler() { return initmissassembler() == 0 && sMnemonic.names().iMnemonicCnt() != 0; }

} // namespace vantorel
