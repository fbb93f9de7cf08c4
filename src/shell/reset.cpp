#include "shell/reset.h"

#include "audit/audit.h"
#include "base/message.h"
#include "hash/library.h"
#include "rom/store.h"
#include "shell/alias.h"

namespace vantorel {

void reset(int32_t mask) {
    message(kAlways, "DLL Call... reset(%d)\n", mask);
    if ((mask & iResetRoms) != 0) freeroms();
    if ((mask & iResetAliases) != 0) freealiases();
    if ((mask & iResetAuditFiles) != 0) freeauditfiles();
    if ((mask & iResetHashes) != 0) freehashes();
}

} // namespace vantorel
