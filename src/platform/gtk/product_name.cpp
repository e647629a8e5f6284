#include "pgn_vistel/product_name.h"

#include <dlfcn.h>
#include <link.h>
#include <wx/string.h>

#include <cstring>
#include <string_view>

#include "platform/platform.h"

namespace pgn_vistel::platform {

namespace {

using Note = ProductNote<1>;

constexpr std::size_t filled_up(std::size_t size) {
    return (size + 3) & ~std::size_t{3};
}

/// The product name among the notes of one segment. Notes of other owners are passed over; one that does not
/// fit into the segment ends the search.
std::string_view name_in(std::string_view notes) {
    constexpr std::size_t head_size = offsetof(Note, owner);
    const Note ours{.name = ""};
    while (notes.size() >= head_size) {
        std::uint32_t owner_size, contents_size, type;
        std::memcpy(&owner_size, notes.data() + offsetof(Note, owner_size), sizeof owner_size);
        std::memcpy(&contents_size, notes.data() + offsetof(Note, name_size), sizeof contents_size);
        std::memcpy(&type, notes.data() + offsetof(Note, type), sizeof type);
        notes.remove_prefix(head_size);
        if (filled_up(owner_size) > notes.size()) break;
        const std::string_view owner = notes.substr(0, owner_size);
        notes.remove_prefix(filled_up(owner_size));
        if (contents_size > notes.size()) break;
        if (type == ours.type && owner == std::string_view(ours.owner, sizeof ours.owner))
            return notes.substr(0, notes.substr(0, contents_size).find('\0'));
        notes.remove_prefix(std::min(filled_up(contents_size), notes.size()));
    }
    return {};
}

struct Search {
    ElfW(Addr) base;
    std::string_view name;
};

int look_at_module(dl_phdr_info* module, std::size_t, void* context) {
    auto& search = *static_cast<Search*>(context);
    if (module->dlpi_addr != search.base) return 0;
    for (int i = 0; i < module->dlpi_phnum && search.name.empty(); ++i) {
        const ElfW(Phdr)& segment = module->dlpi_phdr[i];
        if (segment.p_type == PT_NOTE && segment.p_align <= 4)
            search.name = name_in(
                {reinterpret_cast<const char*>(module->dlpi_addr + segment.p_vaddr), segment.p_memsz});
    }
    return 1;
}

}  // namespace

std::wstring product_name(NativeModule module) {
    link_map* loaded = nullptr;
    if (module == nullptr || dlinfo(module, RTLD_DI_LINKMAP, &loaded) != 0) return {};
    Search search{loaded->l_addr, {}};
    dl_iterate_phdr(look_at_module, &search);
    return wxString::FromUTF8(search.name.data(), search.name.size()).ToStdWstring();
}

}  // namespace pgn_vistel::platform
