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

// The configuration store: the product's settings in one text file that several programs read and
// change. Reads and writes are typed and checked against the catalogue; writes are pending until a
// commit lays them over what the file holds by then.
//
// Every function may be called from any thread. What can only be a programming error is fatal
// (xlogFatalBreak): a key that the catalogue does not know, a type that is not the key's, a stored
// number or bool that cannot be read, a key that was removed.
//
// Loads and commits throw when memory runs out, and std::out_of_range at a line of the file that
// ends with its "=". The locks are released then, and a commit deletes its temporary file.

struct ConfStore;

// The store of this process.
ConfStore& confStore();

// Fills in the defaults and loads `path` (empty: no file). Deprecated properties pass the reads'
// validation when `allowDeprecated` is set. Answers the named mutex's error or the load's.
// May be called again: global keys fall back to their defaults, then the file is read.
[[nodiscard]] XErr confLibInit(ConfStore& store, const std::string& path, bool allowDeprecated);

// Reads the file again. 0, or -1 after a log line; lines before a bad one stay applied.
[[nodiscard]] XErr confReload(ConfStore& store);

// Makes an instance known and gives it the defaults of the properties that it lacks; always 0.
XErr confAddInstance(ConfStore& store, const std::string& name);

// Writes the pending changes to the file that was loaded; does nothing when there are none.
[[nodiscard]] XErr confCommit(ConfStore& store);

// The same into any file, and always. Reads the loaded file again under the machine-wide lock, lays
// the pending changes over it and replaces `path` through "<path>-temp". A failed reload (-1) keeps
// the changes pending; a later failure keeps them in memory only: 7 for a line that no load could
// read, 22 for a key or value that would read back as something else, or a file operation's status.
// The old file stays whole. After a success nothing is pending, whichever file was written: a
// confCommit has nothing left to write.
[[nodiscard]] XErr confCommitToFile(ConfStore& store, const std::string& path);

// Reads, by full key. A key without a value reads as the empty text or 0, and is fatal as a bool.
std::string confGetStringInternal(ConfStore& store, std::string_view key, ConfType type);
std::string confGetString(ConfStore& store, std::string_view key);
std::string confGetMultiString(ConfStore& store, std::string_view key);
std::vector<std::string> confGetMultiStringList(ConfStore& store, std::string_view key);
bool confGetBool(ConfStore& store, std::string_view key);
std::int32_t confGetI32(ConfStore& store, std::string_view key);
std::int64_t confGetI64(ConfStore& store, std::string_view key);

// Writes, by full key; always 0. The key of an unknown instance makes the instance known. Setting a
// key to its committed value takes the pending change back.
XErr confSetStringInternal(ConfStore& store, std::string_view key, ConfType type,
                           std::string_view value);
XErr confSetString(ConfStore& store, std::string_view key, std::string_view value);
XErr confSetMultiString(ConfStore& store, std::string_view key, std::string_view value);
XErr confSetMultiStringList(ConfStore& store, std::string_view key,
                            const std::vector<std::string>& elements);
XErr confSetBool(ConfStore& store, std::string_view key, bool value);
XErr confSetI32(ConfStore& store, std::string_view key, std::int32_t value);
XErr confSetI64(ConfStore& store, std::string_view key, std::int64_t value);

// Elements of a multi-string. An empty text has none; a trailing "," gives a trailing empty one.
// Joining drops leading empty elements.
std::vector<std::string> confSplitMultiString(std::string_view text);
std::string confJoinMultiString(const std::vector<std::string>& elements);

// The current instance, whose properties can be named alone. Setting one that is not known gives -1
// and changes nothing.
[[nodiscard]] XErr confSetCurrentInstance(ConfStore& store, const std::string& name);
std::string confGetCurrentInstance(const ConfStore& store);

// Full key of a property of the current instance; the functions above take it.
std::string confCurrentInstanceKey(const ConfStore& store, std::string_view property);

// A copy of the known instances' names.
std::set<std::string, std::less<>> confGetInstances(ConfStore& store);

// Whether a key exists and has that type; logs why not. A deprecated property is refused unless
// allowed.
bool confValidateProp(const ConfStore& store, std::string_view key, ConfType type,
                      bool allowDeprecated);

// Stages the default of a global key, unless its committed value is the default already; a pending
// change of it then stays.
XErr confRestorePropDefault(ConfStore& store, std::string_view key);

bool confHasPendingChanges(ConfStore& store);
bool confIsPropPending(ConfStore& store, std::string_view key);
XErr confDiscardChanges(ConfStore& store);

// Whole instances. All three look at the committed values only.

// Whether keys of an instance of that name can be read back: not with ".", "=", line feed or NUL.
bool confIsInstanceName(std::string_view name);

// Stages the source's values, deprecated ones left out, as changes of the target and makes the
// target known. A target that exists already is overwritten; one that is removed but not committed
// stays removed. -1 when the source is not known, 22 when `target` is no instance name.
[[nodiscard]] XErr confCopyInstance(ConfStore& store, const std::string& source,
                                    const std::string& target);

// Stages the removal of an instance's committed keys, takes back what is staged for them, and
// forgets the instance. Reading such a key is fatal until the commit. Always 0.
XErr confDeleteInstance(ConfStore& store, const std::string& name);

// The current instance's settings and the global ones, without those that the catalogue excludes,
// as lines "key=value\n" and a NUL, in the order of the stored keys; an instance's key shows as
// "vtr.<property>". Two lines about the product come last. Without a current instance there are
// only the global ones. A key of more than 31 bytes or a value of more than 91 is fatal.
//
// `outSize` is the size of it all, NUL included. 27 when `bufferSize` is less: nothing is written
// then, and `buffer` may be null. 22 for a null buffer otherwise.
[[nodiscard]] XErr confGetInstanceAllConfigs(ConfStore& store, char* buffer,
                                             std::uint32_t bufferSize, std::uint32_t& outSize);

// The stored keys that the dump would now be fatal for.
std::vector<std::string> confKeysTooLongForDump(ConfStore& store);

#endif
