#pragma once

#include <string_view>

// DocumentSetting is one member of the settings document. It has the name of its setting.
struct DocumentSetting {
    enum class Kind {
        flag, // a boolean; the setting is "1" or "-1"
        text,
        fileText, // the text of the file that the setting names; a restore leaves it alone
    };
    std::string_view name;
    Kind kind;
};

// documentSettings lists them in the order in which a restore applies them. The plug-in's own table
// (backup/settingstable.cpp) doesn't compile with another list.
inline constexpr DocumentSetting documentSettings[] = {
    {"show_training_prompt", DocumentSetting::Kind::flag},
    {"open_guard_desk_qa", DocumentSetting::Kind::text},
    {"path_dontpromptlist_filename", DocumentSetting::Kind::fileText},
    {"useGrabbingCreds", DocumentSetting::Kind::flag},
};
