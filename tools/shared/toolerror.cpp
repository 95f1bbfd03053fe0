#include "shared/toolerror.h"

#include "formats/text/printable.h"
#include "shared/jsontext.h"
#include "shared/terminal.h"

void reportFailure(std::ostream& err, const std::string& tool, const CToolError& error, bool asJson)
{
    const bool warning = error.ExitStatus() == exitStatus::good;
    if (warning && isQuiet())
        return;
    if (!asJson) {
        err << coloured(err, warning ? colour_t::yellow : colour_t::red, tool + ':') << ' '
            << printable(error.what()) << '\n';
        return;
    }
    Json::Value line(Json::objectValue);
    line["schema"] = "error-1";
    line["tool"] = tool;
    line["error"] = error.What();
    line["hint"] = error.Hint();
    line["exitStatus"] = error.ExitStatus();
    err << jsonText(line, false) << '\n';
}
