#pragma once

#include "support/backupbytes.h"
#include "support/texts.h"
#include "support/toolrun.h"
#include "vlbackup/commands.h"

#include <json/json.h>

inline toolRun_t vlbackup(std::vector<std::string> arguments, const auto& input)
{
    return runTool(runVlbackup, std::move(arguments), input);
}

inline Json::Value parsed(const std::string& text)
{
    Json::Value value;
    EXPECT_TRUE(Json::Reader().parse(text, value)) << text;
    return value;
}

inline bytes link(const std::wstring& name, const std::wstring& target = L"t",
                  const std::wstring& manifest = L"a.vlm", uint8_t profile = 7,
                  const std::wstring& id = L"id")
{
    return seq({wide(name), wide(target), wide(manifest), integer(profile), wide(id), integer(1)});
}

inline bytes settings(const std::string& members)
{
    return seq({narrow("{\"settings\":{\"current\":{" + members + "}}}")});
}
