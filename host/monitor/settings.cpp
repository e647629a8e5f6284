#include "monitor/settings.h"

#include <wx/fileconf.h>
#include <wx/filename.h>
#include <wx/stdpaths.h>

#include <algorithm>

namespace vistel {

namespace core = pgn_vistel::core;

namespace {

wxString numbered(const char* group, std::size_t number) {
    return wxString::Format("/%s/%u", group, static_cast<unsigned>(number));
}

}  // namespace

wxString Settings::usual_file() {
    wxStandardPaths& paths = wxStandardPaths::Get();
    paths.SetFileLayout(wxStandardPaths::FileLayout_XDG);
    wxFileName file(paths.GetUserConfigDir(), "monitor.conf");
    file.AppendDir("vistel");
    return file.GetFullPath();
}

void Settings::remember_source(const std::string& name) {
    std::erase(recent, name);
    recent.insert(recent.begin(), name);
    if (recent.size() > most_recent) recent.resize(most_recent);
}

void Settings::load(const wxString& file) {
    if (!wxFileName::FileExists(file)) return;
    wxFileConfig config(wxEmptyString, wxEmptyString, file, wxEmptyString, wxCONFIG_USE_LOCAL_FILE);
    config.SetExpandEnvVars(false);
    place = wxRect(static_cast<int>(config.ReadLong("/window/x", place.x)),
                   static_cast<int>(config.ReadLong("/window/y", place.y)),
                   static_cast<int>(config.ReadLong("/window/width", place.width)),
                   static_cast<int>(config.ReadLong("/window/height", place.height)));
    is_maximised = config.ReadBool("/window/maximised", is_maximised);
    for (std::size_t i = 0; i < most_recent; ++i)
        if (wxString name; config.Read(numbered("recent", i), &name))
            recent.push_back(name.ToStdString(wxConvUTF8));
    order = static_cast<int>(config.ReadLong("/window/order", order));
    config.SetPath("/layout");
    wxString size;
    long cookie;
    for (bool more = config.GetFirstEntry(size, cookie); more; more = config.GetNextEntry(size, cookie))
        layout[size.ToStdString(wxConvUTF8)] = static_cast<int>(config.ReadLong(size, 0));
    for (core::DispDataType q = 0; q < core::quantity::count; ++q)
        if (long unit; config.Read(numbered("units", static_cast<std::size_t>(q)), &unit))
            for (const core::UnitId* offered = core::available_units(q); *offered < core::unit::count;
                 ++offered)
                if (*offered == unit) units.select(q, *offered);
}

void Settings::save(const wxString& file) const {
    if (!wxFileName::Mkdir(wxFileName(file).GetPath(), wxS_DIR_DEFAULT, wxPATH_MKDIR_FULL)) return;
    wxFileConfig config(wxEmptyString, wxEmptyString, file, wxEmptyString, wxCONFIG_USE_LOCAL_FILE);
    config.Write("/window/x", place.x);
    config.Write("/window/y", place.y);
    config.Write("/window/width", place.width);
    config.Write("/window/height", place.height);
    config.Write("/window/maximised", is_maximised);
    config.Write("/window/order", order);
    for (const auto& [name, size] : layout) config.Write("/layout/" + wxString::FromUTF8(name), size);
    for (std::size_t i = 0; i < recent.size(); ++i)
        config.Write(numbered("recent", i), wxString::FromUTF8(recent[i]));
    config.DeleteGroup("/units");
    for (core::DispDataType q = 0; q < core::quantity::count; ++q)
        if (units[q] != core::default_unit(q))
            config.Write(numbered("units", static_cast<std::size_t>(q)), static_cast<long>(units[q]));
    config.Flush();
}

}  // namespace vistel
