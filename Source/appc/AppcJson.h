#ifndef APPC_APPCJSON_H
#define APPC_APPCJSON_H

#include <QJsonArray>
#include <QJsonValue>
#include <string>
#include <string_view>

#include "appc/AppcApp.h"

// App lists as JSON: pure functions. Strings are UTF-8.

// Parses a JSON array. Returns false for anything else.
bool appcParseArray(std::string_view text, QJsonArray& array);

// Parses a JSON object and gets its array "apps". Returns false when there is none.
bool appcParseSyncList(std::string_view text, QJsonArray& array);

// Why an array could not be read.
struct AppcFlaw {
    enum Kind { None, NotAnObject, NotDefined, InvalidType };

    Kind kind = None;
    const char* key = "";                           // for NotDefined and InvalidType
    QJsonValue::Type type = QJsonValue::Undefined;  // the type found, for InvalidType
    const char* expected = "";                      // the type expected, for InvalidType
};

// Replaces `apps` with those of an array. Of two elements with the same package the last wins. A
// version code outside 32 bits is clamped, and fractions are truncated.
//
// Stops at the first flaw: at an element that is not an object, `apps` has those before it; at a
// missing key or a value of the wrong type, it is empty.
AppcFlaw appcReadApps(const QJsonArray& array, AppcApps& apps);

// The format of AppCache.json: an indented array with the member "iconFileName".
std::string appcFileText(const AppcApps& apps);

// The format for hosts: the same with "iconFilePath", which is `folder` and the file name.
std::string appcListingText(const AppcApps& apps, const std::string& folder);

#endif
