#include "print.h"

#include "plaintext.h"
#include "shared/jsontext.h"
#include "shared/statusnames.h"
#include "shared/systemerror.h"
#include "shared/terminal.h"

#include <iostream>

Json::Value jsonOfStatus(HRESULT status)
{
    const tools::statusInfo_t known = tools::describeStatus(status);
    Json::Value json(Json::objectValue);
    json["number"] = known.hex;
    json["name"] = known.name;
    json["text"] = errorText(static_cast<DWORD>(status));
    return json;
}

void printResult(const char* schema, Json::Value value, bool asJson)
{
    if (asJson) {
        value["schema"] = schema;
        std::cout << jsonText(value, true) << '\n';
    } else {
        std::cout << plainText(value);
    }
}

void printDone(const char* schema, const Json::Value& value, bool asJson)
{
    if (asJson || !isQuiet())
        printResult(schema, value, asJson);
}
