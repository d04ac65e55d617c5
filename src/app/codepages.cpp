#include "app/codepages.h"

#include <cstddef>

#ifdef __GLIBC__

#include <QtGlobal>

#include <bit>

#include <link.h>
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

namespace app {

namespace {

int releaseObject(dl_phdr_info *object, std::size_t /*size*/, void * /*unused*/)
{
    const auto page = static_cast<quintptr>(sysconf(_SC_PAGESIZE));
    for (int i = 0; i < object->dlpi_phnum; ++i) {
        const ElfW(Phdr) &segment = object->dlpi_phdr[i];
        // What can be written may differ from the file by now, and would be lost.
        if (segment.p_type != PT_LOAD || (segment.p_flags & PF_W) != 0) {
            continue;
        }
        const quintptr begin = (object->dlpi_addr + segment.p_vaddr) / page * page;
        const quintptr end = object->dlpi_addr + segment.p_vaddr + segment.p_memsz;
        madvise(std::bit_cast<void *>(begin), end - begin, MADV_DONTNEED);
    }
    return 0;
}

} // namespace

void releaseCodePages()
{
    malloc_trim(0);
    dl_iterate_phdr(releaseObject, nullptr);
}

} // namespace app

#else

void app::releaseCodePages() { }

#endif
