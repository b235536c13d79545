#ifndef TESTS_LOGLINES_H
#define TESTS_LOGLINES_H

#include <string>

#include "support/Platform.h"
#include "support/ProductVersion.h"

// Log lines that more than one test file expects, as LogCapture::texts() has them. A line that a
// single file expects stands there.
namespace logged {

// The line as a process of this name has it in its log file.
inline std::string by(const std::string& process, std::string line) {
    return line.insert(line.find(' ', 2), ' ' + process);
}

// The line as a host that was initialised as "Helper" has it in its log file.
inline std::string byHelper(const std::string& line) { return by("Helper_bridge", line); }

// The line without its level and tag.
inline std::string messageOf(const std::string& line) { return line.substr(line.find(' ', 2) + 1); }

// The line as a process prints it whose log was not initialised: it has no tag.
inline std::string untagged(const std::string& line) { return "E   " + messageOf(line); }

// The line of a fatal break in a file, "Source/conf/Conf", as a process without a name prints it,
// with the function where the log shows it. Without a tag: of a log that was not initialised.
inline std::string fatalBreak(const std::string& tag, const std::string& file,
                              const std::string& function = "") {
    return "E " + tag + "  " + function + (function.empty() ? "" : " ") +
           "FATAL: DEBUG BREAK: " + file;
}

// The same without the function in the log of a host that was initialised as "Helper".
inline std::string breakOfHelper(const std::string& tag, const std::string& file) {
    return byHelper("E " + tag + " " + fatalBreak("", file).substr(4));
}

// The line of a log without the number and the time at its end.
inline std::string withoutNumber(const std::string& line) {
    return line.substr(0, line.rfind(':'));
}

// The platform.

// Without an error: the start of the line.
inline std::string mutexNotMade(const std::string& name, const std::string& error = "") {
    return "E XMUTEX Failed to create mutex '" + name + "'. Error = " + error;
}

// With the milliseconds as "N".
inline std::string lockAwaited(const std::string& function, const std::string& name) {
    return "W CONF " + function + ": waiting for " + name + " for N ms";
}

inline std::string lockObtained(const std::string& function, const std::string& name) {
    return "W CONF " + function + ": waited for " + name + " for N ms";
}

inline std::string fileNotFlushed(const std::string& path) {
    return "W XFILE Error in flushing file " + path + " to disk. Error = 2";
}

// Without an error: the start of the line.
inline std::string startFailed(const std::string& commandLine, const std::string& error = "") {
    return "E XSTR xprocCreate_basic: CreateProcessW failed: cmdline " + commandLine +
           " GetLastError() " + error;
}

inline std::string elevatedStartFailed(const std::string& program, const std::string& parameters,
                                       const std::string& error) {
    return "E XSTR xprocCreate_elevated_basic: ShellExecuteEx failed: filename " + program +
           " parameters " + parameters + " GetLastError() " + error;
}

// An exception that became a result, of the module "BRIDGE", "IPC" or another. Without its words:
// the start of the line.
inline std::string exceptionCaught(const std::string& module, const std::string& function,
                                   const std::string& words = "") {
    return "E " + module + " " + function + ": exception: " + words;
}

// Whether it is such a line, of any module.
inline bool isOfException(const std::string& line) {
    return line.find(": exception: ") != std::string::npos;
}

inline std::string processNotAwaited(const std::string& error) {
    return "E XSTR xprocWait failed with " + error;
}

// Folders and processes.

inline std::string installFolderUnknown() {
    return "E UTL utlGetInstallDir: Failed to get install dir properly";
}

// The start of the line.
inline std::string memoryTrimming() { return "I UTL Trimming memory for process "; }

inline std::string memoryTrimmed(const std::string& process, const std::string& image) {
    return memoryTrimming() + process + ":" + image;
}

// The configuration.

inline std::string confNotOpened(const std::string& path) {
    return "E CONF open failed for " + path;
}

inline std::string confNotRead(const std::string& path) { return "E CONF read failed for " + path; }

inline std::string confMalformed(const std::string& line) {
    return "E CONF conf file not in correct format, " + line;
}

// In the directory of the global properties, "prop", or of the instances', "iprop".
inline std::string keyUnknown(const std::string& key, const std::string& directory = "prop") {
    return "E CONF " + key + " prop not found in " + directory + " dir";
}

// While a file is loaded: with the key's line.
inline std::string keyUnknownIn(const std::string& line, const std::string& directory = "prop") {
    return keyUnknown(line.substr(0, line.find('=')), directory) + ": " + line;
}

inline std::string keyRemoved(const std::string& key) {
    return "E CONF confGetStringInternal Trying to access deleted prop: [" + key + "]";
}

inline std::string boolInvalid(const std::string& key, const std::string& value) {
    return "E CONF confGetBool error for " + key + ":" + value;
}

inline std::string numberInvalid(const std::string& key, const std::string& value) {
    return "E CONF confGetI32 error for " + key + ":" + value;
}

inline std::string instanceUnknown(const std::string& name) {
    return "E CONF Instance " + name + " doesn't exist";
}

inline std::string committing(const std::string& path) {
    return "I CONF confCommitToFile args: " + path;
}

inline std::string nothingToCommit() {
    return "D CONF No changes in conf file, so nothing to commit.";
}

inline std::string confNotReplaced(const std::string& error) {
    return "E CONF xfileMove failed, err = " + error;
}

// App caches.

inline std::string cacheMissing(const std::string& file) {
    return "W APPC File " + file + " not present";
}

inline std::string cacheKept(const std::string& file, int error) {
    return "E APPC Could not open " + file + ", error: " + systemErrorText(error) +
           ", keeping the file";
}

inline std::string cacheDeleted(const std::string& file, int error) {
    return "E APPC Could not open " + file + ", error: " + systemErrorText(error) +
           ", deleting the file";
}

inline std::string cacheNotAnArray(const std::string& file) {
    return "E APPC Could not create JsonDocument from " + file + " deleting the files";
}

// With the number of the source line as "N".
inline std::string cacheValueInvalid(const std::string& keyAndReason) {
    return "E APPC appcReadFromJsonObj: N: json value " + keyAndReason;
}

inline std::string cacheNotLoaded() { return "E APPC Failed to load app cache from file"; }

inline std::string cacheNotSavedOver(const std::string& file) {
    return "E APPC AppCache file " + file + " could not be read, not saving over it";
}

inline std::string cacheFolderNotMade(const std::string& folder, const std::string& error) {
    return "E APPC Failed to create dir " + folder + ", err: " + error;
}

inline std::string cacheNotOpenedForWriting(const std::string& file) {
    return "E APPC Cannot open AppCache file " + file + " for writing";
}

inline std::string cacheNotWritten(const std::string& file) {
    return "E APPC Error in writing to AppCache file " + file + " failed";
}

// Packets and connections.

// The start of the warning of a send that took long.
inline std::string slowSend() { return "W IPC ipcSendToServer: function took "; }

// Whether it is that warning, which depends on the machine.
inline bool isOfSlowSend(const std::string& line) {
    return line.find(messageOf(slowSend())) != std::string::npos;
}

// A step in the life of a client, or of a server's thread.
inline std::string clientStep(const std::string& function, const std::string& server) {
    return "D IPC " + function + " called for server: " + server;
}

inline std::string replyNotRead(const std::string& server) {
    return "E IPC ipcReadFromServer: Unable to read from server: " + server;
}

// A request that found no server, of the module "PLR" or "MIM".
inline std::string requestNotSent(const std::string& module, const std::string& function,
                                  const std::string& opcode) {
    return "E " + module + " " + function + ": ipcSendToServer command failed, opcode = " + opcode;
}

inline std::string notListening(const std::string& server, const std::string& error) {
    return "E IPC IpcServer Failed to listen on " + server + ", error: " + error;
}

// A step of a connection's life.
inline std::string connectionStep(const std::string& function, const std::string& server) {
    return "D IPC " + function + " called for serverName " + server;
}

// A step of reading what a connection has sent.
inline std::string readStep(const std::string& server, const std::string& step) {
    return "D IPC ipcReadCommand for serverName " + server + ", " + step;
}

// A part of a packet is there: the start of the line.
inline std::string readPart(const std::string& server, const std::string& size) {
    return readStep(server, "bufferReadSize = " + size + ", packetLen = ");
}

inline std::string readWhole(const std::string& server) {
    return readStep(server, "calling decodeFunction");
}

inline std::string readError(const std::string& server, const std::string& error) {
    return "E IPC ipcReadCommand for serverName " + server + ", " + error;
}

// A packet whose length leaves no 32-bit number of bytes to read after the header.
inline std::string lengthInvalid(const std::string& server, const std::string& length,
                                 const std::string& rest) {
    return readError(server, "bytesToRead " + rest + " is negative, packetLen = " + length +
                                 ", buffer size = 12");
}

// The library's interface.

inline std::string nullArgument(const std::string& function) {
    return "E BRIDGE " + function + ": null argument";
}

inline std::string initialising(const std::string& client) {
    return "I BRIDGE bridgeApiInitEx:#################### In bridgeApiInit " + client +
           " ###############";
}

inline std::string clientInvalid(const std::string& client) {
    return "E BRIDGE bridgeApiInitEx: Invalid clientId : " + client;
}

inline std::string versionMismatched(const std::string& productVersion) {
    return "E BRIDGE bridgeApiInitEx: Version mismatch, Product Version : " + productVersion +
           ", Bridge Version : " + kProductVersion;
}

inline std::string confLoading() { return "I BRIDGE Loading configuration ..."; }

inline std::string confLoaded() { return "I BRIDGE Configuration loaded successfully..."; }

inline std::string confNotLoaded() { return "E BRIDGE Error in confLibInit init"; }

inline std::string committingForHost(const std::string& path) {
    return "I BRIDGE bridgeConfCommitToFile args: " + path;
}

inline std::string appsNotListed() {
    return "E BRIDGE Error in appcLibInit, err = XERR_FAILURE (-1)";
}

inline std::string packetTooShort(const std::string& length) {
    return "E BRIDGE bridgeDecode: invalid bufferLen: " + length;
}

inline std::string opcodeInvalid(const std::string& opcode) {
    return "E BRIDGE bridgeDecode: invalid opcode: " + opcode;
}

inline std::string instanceCreated(const std::string& status, const std::string& instance) {
    return "I BRIDGE bridgeOnCreateInstanceCompletedClbk called: status " + status + ", instance " +
           instance;
}

}  // namespace logged

#endif
