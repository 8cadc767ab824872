// elf_file.cpp - see elf_file.hpp. Offsets and sizes come from the file, so each is checked.
#include "tools/elf_file.hpp"

#include <cstring>
#include <elf.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

class mapped_file {
  public:
    explicit mapped_file(const char *path) {
        const int file = open(path, O_RDONLY | O_CLOEXEC);
        struct stat status;
        if (file < 0)
            return;
        if (fstat(file, &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0) {
            const size_t size = size_t(status.st_size);
            void *const data = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file, 0);
            if (data != MAP_FAILED) {
                data_ = static_cast<const char *>(data);
                size_ = size;
            }
        }
        close(file);
    }
    mapped_file(const mapped_file &) = delete;
    mapped_file &operator=(const mapped_file &) = delete;
    ~mapped_file() {
        if (data_)
            munmap(const_cast<char *>(data_), size_);
    }

    // The item at an offset, copied since it may lie anywhere; false if it is not all in the file.
    template <class T>
    bool read(uint64_t offset, T *item) const {
        if (offset > size_ || size_ - offset < sizeof(T))
            return false;
        std::memcpy(item, data_ + offset, sizeof(T));
        return true;
    }

    // The string at an offset, empty if it has no end before `end`.
    const char *text(uint64_t offset, uint64_t end) const {
        if (end > size_ || offset >= end || !std::memchr(data_ + offset, '\0', end - offset))
            return "";
        return data_ + offset;
    }

  private:
    const char *data_ = nullptr;
    size_t size_ = 0;
};

// A section of entries of one type, and the section that holds their names.
struct table {
    Elf64_Shdr entries, names;

    const char *name(const mapped_file &file, uint64_t offset) const {
        return file.text(names.sh_offset + offset, names.sh_offset + names.sh_size);
    }

    template <class Entry, class Visit>
    void for_each(const mapped_file &file, Visit visit) const {
        Entry entry;
        for (uint64_t i = 0; i < entries.sh_size / sizeof entry; ++i) {
            if (!file.read(entries.sh_offset + i * sizeof entry, &entry))
                return;
            visit(entry);
        }
    }
};

void read_table(const mapped_file &file, const table &t, elf_file &result) {
    switch (t.entries.sh_type) {
    case SHT_SYMTAB:
    case SHT_DYNSYM:
        t.for_each<Elf64_Sym>(file, [&](const Elf64_Sym &symbol) {
            const int type = ELF64_ST_TYPE(symbol.st_info);
            if (symbol.st_shndx != SHN_UNDEF && (type == STT_FUNC || type == STT_GNU_IFUNC))
                result.functions.insert(t.name(file, symbol.st_name));
        });
        break;
    case SHT_DYNAMIC:
        t.for_each<Elf64_Dyn>(file, [&](const Elf64_Dyn &entry) {
            if (entry.d_tag == DT_NEEDED)
                result.needed.insert(t.name(file, entry.d_un.d_val));
        });
    }
}

} // namespace

elf_file read_elf(const char *path) {
    elf_file result;
    const mapped_file file(path);
    Elf64_Ehdr header;
    if (!file.read(0, &header.e_ident) || std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0)
        return result;
    result.kind = elf_file::format::foreign;
    if (header.e_ident[EI_CLASS] != ELFCLASS64 || header.e_ident[EI_DATA] != ELFDATA2LSB ||
        !file.read(0, &header) || header.e_machine != EM_X86_64)
        return result;
    result.kind = elf_file::format::native;
    for (int i = 0; i < header.e_phnum; ++i) {
        Elf64_Phdr segment;
        if (!file.read(header.e_phoff + uint64_t(i) * sizeof segment, &segment))
            break;
        result.has_interpreter |= segment.p_type == PT_INTERP;
    }
    for (int i = 0; i < header.e_shnum; ++i) {
        table t;
        if (file.read(header.e_shoff + uint64_t(i) * sizeof t.entries, &t.entries) &&
            file.read(header.e_shoff + t.entries.sh_link * sizeof t.names, &t.names))
            read_table(file, t, result);
    }
    return result;
}
