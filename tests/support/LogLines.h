#ifndef TESTS_LOGLINES_H
#define TESTS_LOGLINES_H

#include <string>

#include "support/Platform.h"
#include "support/ProductVersion.h"

// Log lines that several test files expect, as LogCapture::texts() returns them. A line that only
// one file expects is in that file. Where a function says "start", the rest of the line varies.
namespace logged {

using Line = std::string;
using Text = const std::string&;

// The line in the log file of a process with this name.
inline Line by(Text process, Line line) { return line.insert(line.find(' ', 2), ' ' + process); }

// The line in the log file of a host that was initialised as "Helper".
inline Line byHelper(Text line) { return by("Helper_bridge", line); }

// The line without its level and tag.
inline Line messageOf(Text line) { return line.substr(line.find(' ', 2) + 1); }

// The line as a process prints it before its log is initialised: without a tag.
inline Line untagged(Text line) { return "E   " + messageOf(line); }

// The line of a fatal break in a file, "Source/conf/Conf", as a process without a name prints it.
// Pass the function if the log shows it, and no tag if the log is not initialised.
inline Line fatalBreak(Text tag, Text file, Text function = "") {
    return "E " + tag + "  " + function + (function.empty() ? "" : " ") +
           "FATAL: DEBUG BREAK: " + file;
}

// The same in the log of a host that was initialised as "Helper".
inline Line breakOfHelper(Text tag, Text file) {
    return byHelper("E " + tag + " " + fatalBreak("", file).substr(4));
}

// The line of a fatal break without its line number and time.
inline Line withoutNumber(Text line) { return line.substr(0, line.rfind(':')); }

// The platform.

// Without an error: the start.
inline Line mutexNotMade(Text name, Text error = "") {
    return "E XMUTEX Failed to create mutex '" + name + "'. Error = " + error;
}
// The two lines of a long wait have their milliseconds as "N".
inline Line lockAwaited(Text function, Text name) {
    return "W CONF " + function + ": waiting for " + name + " for N ms";
}
inline Line lockObtained(Text function, Text name) {
    return "W CONF " + function + ": waited for " + name + " for N ms";
}
inline Line fileNotFlushed(Text path) {
    return "W XFILE Error in flushing file " + path + " to disk. Error = 2";
}
// Without an error: the start.
inline Line startFailed(Text commandLine, Text error = "") {
    return "E XSTR xprocCreate_basic: CreateProcessW failed: cmdline " + commandLine +
           " GetLastError() " + error;
}
inline Line elevatedStartFailed(Text program, Text parameters, Text error) {
    return "E XSTR xprocCreate_elevated_basic: ShellExecuteEx failed: filename " + program +
           " parameters " + parameters + " GetLastError() " + error;
}
// An exception that a function of the module "BRIDGE", "IPC" or another turned into a result.
// Without its text: the start.
inline Line exceptionCaught(Text module, Text function, Text text = "") {
    return "E " + module + " " + function + ": exception: " + text;
}
inline bool isOfException(Text line) { return line.find(": exception: ") != Line::npos; }
inline Line processNotAwaited(Text error) { return "E XSTR xprocWait failed with " + error; }

// Folders and processes.

inline Line installFolderUnknown() {
    return "E UTL utlGetInstallDir: Failed to get install dir properly";
}
// The start.
inline Line memoryTrimming() { return "I UTL Trimming memory for process "; }
inline Line memoryTrimmed(Text process, Text image) {
    return memoryTrimming() + process + ":" + image;
}

// The configuration.

inline Line confNotOpened(Text path) { return "E CONF open failed for " + path; }
inline Line confNotRead(Text path) { return "E CONF read failed for " + path; }
inline Line confMalformed(Text line) { return "E CONF conf file not in correct format, " + line; }
// The directory is "prop" for global properties and "iprop" for those of instances.
inline Line keyUnknown(Text key, Text directory = "prop") {
    return "E CONF " + key + " prop not found in " + directory + " dir";
}
inline Line keyRemoved(Text key) {
    return "E CONF confGetStringInternal Trying to access deleted prop: [" + key + "]";
}
inline Line boolInvalid(Text key, Text value) {
    return "E CONF confGetBool error for " + key + ":" + value;
}
inline Line numberInvalid(Text key, Text value) {
    return "E CONF confGetI32 error for " + key + ":" + value;
}
inline Line instanceUnknown(Text name) { return "E CONF Instance " + name + " doesn't exist"; }
inline Line committing(Text path) { return "I CONF confCommitToFile args: " + path; }
inline Line nothingToCommit() { return "D CONF No changes in conf file, so nothing to commit."; }
inline Line confNotReplaced(Text error) { return "E CONF xfileMove failed, err = " + error; }

// App caches.

inline Line cacheMissing(Text file) { return "W APPC File " + file + " not present"; }
inline Line cacheNotOpened(Text file, int error, Text what) {
    return "E APPC Could not open " + file + ", error: " + systemErrorText(error) + ", " + what;
}
inline Line cacheKept(Text file, int error) {
    return cacheNotOpened(file, error, "keeping the file");
}
inline Line cacheDeleted(Text file, int error) {
    return cacheNotOpened(file, error, "deleting the file");
}
inline Line cacheNotAnArray(Text file) {
    return "E APPC Could not create JsonDocument from " + file + " deleting the files";
}
// With the number of the source line as "N".
inline Line cacheValueInvalid(Text keyAndReason) {
    return "E APPC appcReadFromJsonObj: N: json value " + keyAndReason;
}
inline Line cacheNotLoaded() { return "E APPC Failed to load app cache from file"; }
inline Line cacheNotSavedOver(Text file) {
    return "E APPC AppCache file " + file + " could not be read, not saving over it";
}
inline Line cacheFolderNotMade(Text folder, Text error) {
    return "E APPC Failed to create dir " + folder + ", err: " + error;
}
inline Line cacheNotOpenedForWriting(Text file) {
    return "E APPC Cannot open AppCache file " + file + " for writing";
}
inline Line cacheNotWritten(Text file) {
    return "E APPC Error in writing to AppCache file " + file + " failed";
}

// Packets and connections.

// The start of the warning of a slow send.
inline Line slowSend() { return "W IPC ipcSendToServer: function took "; }
inline bool isOfSlowSend(Text line) { return line.find(messageOf(slowSend())) != Line::npos; }

// A step in the life of a client, or of a server's thread.
inline Line clientStep(Text function, Text server) {
    return "D IPC " + function + " called for server: " + server;
}
inline Line replyNotRead(Text server) {
    return "E IPC ipcReadFromServer: Unable to read from server: " + server;
}
// A request of the module "PLR" or "MIM" that found no server.
inline Line requestNotSent(Text module, Text function, Text opcode) {
    return "E " + module + " " + function + ": ipcSendToServer command failed, opcode = " + opcode;
}
inline Line notListening(Text server, Text error) {
    return "E IPC IpcServer Failed to listen on " + server + ", error: " + error;
}
// A step in the life of a connection.
inline Line connectionStep(Text function, Text server) {
    return "D IPC " + function + " called for serverName " + server;
}
// The steps of reading what a connection has sent.
inline Line readStep(Text server, Text step) {
    return "D IPC ipcReadCommand for serverName " + server + ", " + step;
}
// A part of a packet has arrived: the start.
inline Line readPart(Text server, Text size) {
    return readStep(server, "bufferReadSize = " + size + ", packetLen = ");
}
inline Line readWhole(Text server) { return readStep(server, "calling decodeFunction"); }
inline Line readError(Text server, Text error) {
    return "E IPC ipcReadCommand for serverName " + server + ", " + error;
}
// A packet whose length without the header does not fit a 32-bit number.
inline Line lengthInvalid(Text server, Text length, Text rest) {
    return readError(server, "bytesToRead " + rest + " is negative, packetLen = " + length +
                                 ", buffer size = 12");
}

// The library's interface.

inline Line nullArgument(Text function) { return "E BRIDGE " + function + ": null argument"; }
inline Line initialising(Text client) {
    return "I BRIDGE bridgeApiInitEx:#################### In bridgeApiInit " + client +
           " ###############";
}
inline Line clientInvalid(Text client) {
    return "E BRIDGE bridgeApiInitEx: Invalid clientId : " + client;
}
inline Line versionMismatched(Text productVersion) {
    return "E BRIDGE bridgeApiInitEx: Version mismatch, Product Version : " + productVersion +
           ", Bridge Version : " + kProductVersion;
}
inline Line confLoading() { return "I BRIDGE Loading configuration ..."; }
inline Line confLoaded() { return "I BRIDGE Configuration loaded successfully..."; }
inline Line confNotLoaded() { return "E BRIDGE Error in confLibInit init"; }
inline Line committingForHost(Text path) { return "I BRIDGE bridgeConfCommitToFile args: " + path; }
inline Line appsNotListed() { return "E BRIDGE Error in appcLibInit, err = XERR_FAILURE (-1)"; }
inline Line packetTooShort(Text length) {
    return "E BRIDGE bridgeDecode: invalid bufferLen: " + length;
}
inline Line opcodeInvalid(Text opcode) {
    return "E BRIDGE bridgeDecode: invalid opcode: " + opcode;
}
inline Line instanceCreated(Text status, Text instance) {
    return "I BRIDGE bridgeOnCreateInstanceCompletedClbk called: status " + status + ", instance " +
           instance;
}

}  // namespace logged

#endif
