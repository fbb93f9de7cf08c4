#include "component/savecomponent.h"

#include "base/files.h"
#include "base/message.h"
#include "base/settings.h"
#include "component/extract.h"
#include "component/loadable.h"
#include "component/selection.h"
#include "rom/store.h"

namespace vantorel {

namespace {

void narraterelocs(const Component& component) {
    if (!haslibraryform(component)) return;
    const size_t relocs = relocsinside(component).size();
    if (relocs == 0)
        message(kResult, "No relocs? this is probably an error as ROMTAG needs them\n");
    else
        message(kProgress, "Writing %d relocs to a HUNK_%s hunk\n", static_cast<int32_t>(relocs),
                component.iSize < iShortRelocLimit ? "DREL32" : "RELOC32");
}

void saveone(int32_t rom, int32_t number, const std::string& name) {
    const Component& component = *findrecord(rom, number);
    const std::string path = savepath(name.empty() ? shown(component.pcHash) : name);
    message(kResult, "Saving component=%d (%s,%d relocs) from ROM %d to file %s\n", number,
            shown(component.pcName), component.iRelocs(), rom, path.c_str());
    if (!readyforfile(rom, number)) return;
    OutputFile file(path);
    if (!file.isopen()) {
        message(kResult, "Unable to open output file\n");
        return;
    }
    const Bytes bytes = componentfile(*findslot(rom), component);
    narraterelocs(component);
    file.write(bytes);
    if (!file.close()) reportnotwritten(path);
}

} // namespace

void savecomponent(int32_t rom, int32_t component, const std::string& name) {
    saveselected(rom, component, name, saveone);
}

} // namespace vantorel
