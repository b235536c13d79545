#ifndef APPC_APPCJSON_H
#define APPC_APPCJSON_H

#include <QJsonArray>
#include <QJsonValue>
#include <string>
#include <string_view>

#include "appc/AppcApp.h"

// App lists as JSON: pure functions over bytes and values. Texts are UTF-8.

// The array that a text holds. False when it is not JSON, or JSON of another kind.
bool appcParseArray(std::string_view text, QJsonArray& array);

// The array "apps" of the object that a text holds. False when there is none.
bool appcParseSyncList(std::string_view text, QJsonArray& array);

// What kept an array from being read.
struct AppcFlaw {
    enum Kind { None, NotAnObject, NotDefined, InvalidType };

    Kind kind = None;
    const char* key = "";                           // of the last two
    QJsonValue::Type type = QJsonValue::Undefined;  // what an InvalidType has
    const char* expected = "";                      // and what it should have
};

// Replaces `apps` by those of an array. Of two elements of one package the last counts; a version
// code outside 32 bits becomes the nearest number, and fractions are cut.
//
// Stops at the first flaw. At an element that is not an object, `apps` has those before it; at a
// key that is missing or mistyped it is empty.
AppcFlaw appcReadApps(const QJsonArray& array, AppcApps& apps);

// The form of AppCache.json: an indented array with the member "iconFileName".
std::string appcFileText(const AppcApps& apps);

// The form that hosts get: the same with "iconFilePath", the folder's text and the file name.
std::string appcListingText(const AppcApps& apps, const std::string& folder);

#endif
