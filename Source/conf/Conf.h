#ifndef CONF_CONF_H
#define CONF_CONF_H

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "conf/ConfCatalogue.h"
#include "xpl/Xerr.h"

// The configuration store: the product's settings, in one text file that several programs read and
// change. Reads and writes are typed and checked against the catalogue. Writes are pending until a
// commit merges them into the file's current content.
//
// Thread-safe. These are fatal (xlogFatalBreak): a key that is not in the catalogue, a wrong type,
// a stored number or bool that cannot be parsed, and a removed key.
//
// Loads and commits throw std::bad_alloc, and std::out_of_range at a line of the file that ends
// with its "=". The locks are then released, and a commit deletes its temporary file.

struct ConfStore;

// The store of this process.
ConfStore& confStore();

// Sets the defaults and loads `path` (empty: no file). With `allowDeprecated`, deprecated
// properties may be read. Returns the error of the named mutex or of the load. May be called again:
// global keys return to their defaults, then the file is read.
[[nodiscard]] XErr confLibInit(ConfStore& store, const std::string& path, bool allowDeprecated);

// Reads the file again. Returns 0, or -1 after logging the error; lines before a bad one stay
// applied.
[[nodiscard]] XErr confReload(ConfStore& store);

// Makes an instance known and sets the defaults of properties that it lacks. Always returns 0.
XErr confAddInstance(ConfStore& store, const std::string& name);

// Writes the pending changes to the file that was loaded; does nothing when there are none.
[[nodiscard]] XErr confCommit(ConfStore& store);

// The same to any file, even without changes. Under the machine-wide lock, reads the loaded file
// again, merges the pending changes and replaces `path` through "<path>-temp". After a failed
// reload (-1) the changes stay pending. After a later failure they are in memory only: 7 for a line
// that is too long, 22 for a key or value that would not read back, or a file operation's status.
// The old file stays intact. After a success nothing is pending, whichever file was written.
[[nodiscard]] XErr confCommitToFile(ConfStore& store, const std::string& path);

// Read by full key. A key without a value reads as "" or 0; as a bool it is fatal.
std::string confGetStringInternal(ConfStore& store, std::string_view key, ConfType type);
std::string confGetString(ConfStore& store, std::string_view key);
std::string confGetMultiString(ConfStore& store, std::string_view key);
std::vector<std::string> confGetMultiStringList(ConfStore& store, std::string_view key);
bool confGetBool(ConfStore& store, std::string_view key);
std::int32_t confGetI32(ConfStore& store, std::string_view key);
std::int64_t confGetI64(ConfStore& store, std::string_view key);

// Write by full key. Always return 0. Writing to an unknown instance makes it known. Setting a key
// to its committed value removes the pending change.
XErr confSetStringInternal(ConfStore& store, std::string_view key, ConfType type,
                           std::string_view value);
XErr confSetString(ConfStore& store, std::string_view key, std::string_view value);
XErr confSetMultiString(ConfStore& store, std::string_view key, std::string_view value);
XErr confSetMultiStringList(ConfStore& store, std::string_view key,
                            const std::vector<std::string>& elements);
XErr confSetBool(ConfStore& store, std::string_view key, bool value);
XErr confSetI32(ConfStore& store, std::string_view key, std::int32_t value);
XErr confSetI64(ConfStore& store, std::string_view key, std::int64_t value);

// Elements of a multi-string. "" has none; after a trailing "," there is an empty one. Joining
// drops leading empty elements.
std::vector<std::string> confSplitMultiString(std::string_view text);
std::string confJoinMultiString(const std::vector<std::string>& elements);

// The current instance, whose properties can be named without it. Setting an unknown one returns -1
// and changes nothing.
[[nodiscard]] XErr confSetCurrentInstance(ConfStore& store, const std::string& name);
std::string confGetCurrentInstance(const ConfStore& store);

// Full key of a property of the current instance.
std::string confCurrentInstanceKey(const ConfStore& store, std::string_view property);

// The names of the known instances.
std::set<std::string, std::less<>> confGetInstances(ConfStore& store);

// Whether a key exists and has that type; logs the reason if not. Deprecated properties are refused
// unless allowed.
bool confValidateProp(const ConfStore& store, std::string_view key, ConfType type,
                      bool allowDeprecated);

// Stages the default of a global key. When the committed value is the default, does nothing: a
// pending change stays.
XErr confRestorePropDefault(ConfStore& store, std::string_view key);

bool confHasPendingChanges(ConfStore& store);
bool confIsPropPending(ConfStore& store, std::string_view key);
XErr confDiscardChanges(ConfStore& store);

// Whole instances. These functions use the committed values only.

// Whether this can be an instance name: it has no ".", "=", line feed or NUL.
bool confIsInstanceName(std::string_view name);

// Stages the source's values, except deprecated ones, as changes of the target and makes the target
// known. Overwrites values of an existing target; its keys whose removal is pending stay removed.
// Returns -1 when the source is unknown, 22 when `target` is not an instance name.
[[nodiscard]] XErr confCopyInstance(ConfStore& store, const std::string& source,
                                    const std::string& target);

// Stages the removal of an instance's committed keys, drops their pending changes and forgets the
// instance. Until the commit, reading such a key is fatal. Always returns 0.
XErr confDeleteInstance(ConfStore& store, const std::string& name);

// Dumps the settings of the current instance and the global ones, except those that the catalogue
// excludes, as lines "key=value\n" and a NUL, in the order of the stored keys. An instance's key is
// shown as "vtr.<property>". Two lines about the product come last. Without a current instance
// there are only the global settings. A key of more than 31 bytes or a value of more than 91 is
// fatal.
//
// `outSize` is the size needed, NUL included. Returns 27 when `bufferSize` is less: nothing is
// written, and `buffer` may be null. Otherwise a null buffer returns 22.
[[nodiscard]] XErr confGetInstanceAllConfigs(ConfStore& store, char* buffer,
                                             std::uint32_t bufferSize, std::uint32_t& outSize);

// The stored keys that would make the dump fatal.
std::vector<std::string> confKeysTooLongForDump(ConfStore& store);

#endif
