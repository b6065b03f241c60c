// Who is responsible for a framework, or for a module of one.
//
//     ZELFwModRespHelper responsibles;
//     responsibles.parseFiles("organisation.txt", "components.txt");
//     if (const char* who = responsibles.getModuleLongResponsible("Base", "Strings")) puts(who);
//
// Two text files say so. Each of their lines ends with a line feed; a last one without is left out.
//
// The organisation file has one person per line. The line ends with a code of at most three letters between two dots,
// has at least eight characters, and does not begin with the first of those dots:
//     Smith John, Base Tools .jsm.              the code JSM
// The component file has one framework or module per line: six fields or more, separated by single blanks. The fifth
// declares and the sixth names the code. A framework comes before its modules, which name it in the fourth field behind
// seven characters of any kind:
//     1 2 3 - Fw:Base Resp:jsm
//     1 2 3 Parent:Base Mod:Strings Resp:ab
// Codes are turned to upper case; names regard case. Lines that declare something else are passed over. What is wrong
// is told on standard output, in lines that begin with "# ERROR: " or "# Error: ", and the first of two lines counts.
//
// Copies share what was read. Neither distinct helpers nor maps (ZELHashSCMap.h) may be read in, or ended, from two
// threads at a time; asking may happen from all. When memory runs out, a line that starts with "# Alloc failed in "
// goes to standard output and the entry is left out. Nothing throws.
#ifndef ZELFWMODRESPHELPER_H
#define ZELFWMODRESPHELPER_H

#include <cstddef>

#include "ZELExport.h"
#include "ZELHeapObject.h"
#include "ZELShared.h"

class ZEL_API ZELFwModRespHelper : public ZELHeapObject {
public:
    ZELFwModRespHelper() noexcept;
    ZELFwModRespHelper(const ZELFwModRespHelper&) noexcept = default;
    ZELFwModRespHelper& operator=(const ZELFwModRespHelper&) noexcept = default;
    virtual ~ZELFwModRespHelper();

    // Always 0. Files that cannot be opened count as empty; one that cannot be read to its end is told. Each kind is
    // read once: later calls change nothing.
    int parseFiles(const char* orgFile, const char* componentFile) noexcept;

    // The code, or the whole line of the organisation file that has this code. Null when an argument is, and when there
    // is none. Valid until the last copy of this object ends.
    const char* getFrameworkShortResponsible(const char* fw) const noexcept;
    const char* getFrameworkLongResponsible(const char* fw) const noexcept;
    const char* getModuleShortResponsible(const char* fw, const char* mod) const noexcept;
    const char* getModuleLongResponsible(const char* fw, const char* mod) const noexcept;

private:
    struct Shared;

    int parseQNOrgFile(const char* path) noexcept;
    int parseADLFile(const char* path) noexcept;

    ZELShared<Shared> _shared;  // empty without memory
};

#endif
