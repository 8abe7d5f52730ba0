// Names of functions, out of the symbol tables of the files that are loaded (ELF, "Symbol Table").
#include "platform/crash.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include <elf.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// A file of this processor's own word, seen as it lies on the disk. What does not lie inside the file is not
// there.
class elfFile
{
public:
    explicit elfFile(const char* path)
    {
        const int file = open(path, O_RDONLY | O_CLOEXEC);
        struct stat facts = {};
        if (file >= 0 && fstat(file, &facts) == 0 && S_ISREG(facts.st_mode) && facts.st_size > 0) {
            Size = static_cast<size_t>(facts.st_size);
            void* const view = mmap(nullptr, Size, PROT_READ, MAP_PRIVATE, file, 0);
            if (view != MAP_FAILED)
                Bytes = static_cast<const char*>(view);
        }
        if (file >= 0)
            close(file);
        ReadHeader();
    }
    ~elfFile()
    {
        if (Bytes != nullptr)
            munmap(const_cast<char*>(Bytes), Size);
    }
    elfFile(const elfFile&) = delete;
    elfFile& operator=(const elfFile&) = delete;

    // The address that the file asks to be loaded at: the first of its loaded parts, at the start of its
    // page.
    bool LoadAddress(uint64_t& address) const
    {
        constexpr uint64_t PageMask = 4095;
        for (size_t i = 0; i < Header.e_phnum; ++i) {
            Elf64_Phdr part;
            if (!Read(Header.e_phoff + i * sizeof part, part))
                return false;
            if (part.p_type != PT_LOAD)
                continue;
            address = part.p_vaddr & ~PageMask;
            return true;
        }
        return false;
    }

    // The function that an address of the file lies in.
    bool Find(uint64_t address, crashSymbol& symbol) const
    {
        for (const uint32_t kind : {uint32_t{SHT_SYMTAB}, uint32_t{SHT_DYNSYM}}) {
            if (FindIn(kind, address, symbol))
                return true;
        }
        return false;
    }

private:
    template <class valueType>
    bool Read(uint64_t offset, valueType& value) const
    {
        if (Bytes == nullptr || offset > Size || sizeof value > Size - offset)
            return false;
        std::memcpy(&value, Bytes + offset, sizeof value);
        return true;
    }

    void ReadHeader()
    {
        const bool known = Read(0, Header) && std::memcmp(Header.e_ident, ELFMAG, SELFMAG) == 0 &&
                           Header.e_ident[EI_CLASS] == ELFCLASS64 &&
                           Header.e_shentsize == sizeof(Elf64_Shdr) &&
                           Header.e_phentsize == sizeof(Elf64_Phdr);
        if (!known)
            Header = {};
    }

    bool Section(size_t index, Elf64_Shdr& section) const
    {
        return index < Header.e_shnum && Read(Header.e_shoff + index * sizeof section, section);
    }

    bool FindIn(uint32_t kind, uint64_t address, crashSymbol& symbol) const
    {
        Elf64_Shdr table, names;
        for (size_t i = 0; i < Header.e_shnum; ++i) {
            if (Section(i, table) && table.sh_type == kind && Section(table.sh_link, names) &&
                FindAmong(table, names, address, symbol))
                return true;
        }
        return false;
    }

    bool FindAmong(const Elf64_Shdr& table, const Elf64_Shdr& names, uint64_t address,
                   crashSymbol& symbol) const
    {
        const uint64_t count = table.sh_size / sizeof(Elf64_Sym);
        Elf64_Sym one;
        for (uint64_t i = 0; i < count && Read(table.sh_offset + i * sizeof one, one); ++i) {
            const bool function = ELF64_ST_TYPE(one.st_info) == STT_FUNC && one.st_shndx != SHN_UNDEF;
            if (!function || address - one.st_value >= one.st_size)
                continue;
            symbol.Displacement = address - one.st_value;
            return CopyName(names, one.st_name, symbol);
        }
        return false;
    }

    bool CopyName(const Elf64_Shdr& names, uint64_t offset, crashSymbol& symbol) const
    {
        if (offset >= names.sh_size || names.sh_offset > Size || names.sh_size > Size - names.sh_offset)
            return false;
        const std::string_view text(Bytes + names.sh_offset + offset, names.sh_size - offset);
        const size_t length = std::min(text.find('\0'), sizeof symbol.Name - 1);
        if (length > text.size())
            return false;
        std::copy_n(text.begin(), length, symbol.Name);
        symbol.Name[length] = '\0';
        return length > 0;
    }

    const char* Bytes = nullptr;
    size_t Size = 0;
    Elf64_Ehdr Header = {};
};

}  // namespace

bool crashSymbolsStart()
{
    return true;
}

void crashSymbolsEnd() {}

bool crashSymbolAt(const crashSnapshot& snapshot, uint64_t address, crashSymbol& symbol)
{
    for (unsigned i = 0; i < snapshot.ModuleCount; ++i) {
        const crashModule& module = snapshot.Modules[i];
        if (!module.Range.Has(address))
            continue;
        char path[crashPathRoom];
        if (crashModulePath(module, path, sizeof path) == 0)
            return false;
        const elfFile file(path);
        uint64_t asked = 0;
        return file.LoadAddress(asked) && file.Find(address - module.Range.Base + asked, symbol);
    }
    return false;
}

// Lines are in debugging information, which is not shipped.
bool crashLineAt(uint64_t, crashLine&)
{
    return false;
}
