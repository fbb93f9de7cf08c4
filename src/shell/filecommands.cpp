// The commands on libraries of files: the hash library, the audit and the disk image.

#include "adf/disk.h"
#include "adf/savezip.h"
#include "audit/audit.h"
#include "audit/basename.h"
#include "base/message.h"
#include "hash/library.h"
#include "shell/arguments.h"
#include "shell/commandset.h"

namespace vantorel::command {

void auditfiles() {
    if (require(1, "ERROR, please specify the top level directory that contans files to audit\n"))
        vantorel::auditfiles(argument(1));
}

void loadhashes() { vantorel::loadhashes(isgiven(1) ? argument(1) : cHashLibrary); }

void loadadf() {
    if (require(1, "ERROR, please specify the ADF to load\n"))
        message(kResult, "ADF loaded:%s\n", vantorel::loadadf(argument(1)).c_str());
}

void adflist() {
    int32_t n = 0;
    for (std::string path = vantorel::adflist(n); !path.empty(); path = vantorel::adflist(++n))
        message(kAlways, "[%3d] %s\n", n, path.c_str());
}

void adfsavefile() {
    if (!require(1, "ERROR, please specify the file to save from the ADF\n")) return;
    vantorel::adfsavefile(argument(1), isgiven(2) ? argument(2) : mBasename(argument(1)));
}

void adfsavezip() {
    if (require(1, "ERROR, please specify the new zip file name to save to\n"))
        vantorel::adfsavezip(argument(1));
}

} // namespace vantorel::command
