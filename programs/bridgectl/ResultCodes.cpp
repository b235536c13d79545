#include "ResultCodes.h"

#include <cstddef>

#include "WindowsErrorText.h"
#include "conf/ConfNumber.h"
#include "xpl/XerrTable.h"

namespace {

// A code that is added to the library's table and not here does not build.
const char* meaningOf(XErrCode code) {
    switch (code) {
        case XERR_FAILURE:
            return "it failed; the log has the cause";
        case XERR_SUCCESS:
            return "it worked";
        case XERR_PERM:
            return "not permitted";
        case XERR_NOENT:
            return "no such file or folder";
        case XERR_SRCH:
            return "no such process";
        case XERR_INTR:
            return "interrupted";
        case XERR_IO:
            return "input or output failed";
        case XERR_NXIO:
            return "no such device or address";
        case XERR_2BIG:
            return "too long";
        case XERR_NOEXEC:
            return "not an executable format";
        case XERR_BADF:
            return "bad handle";
        case XERR_CHILD:
            return "no child process";
        case XERR_AGAIN:
            return "not now; try again";
        case XERR_NOMEM:
            return "not enough memory";
        case XERR_ACCES:
            return "access denied";
        case XERR_FAULT:
            return "bad address";
        case XERR_NOTBLK:
            return "not a block device";
        case XERR_BUSY:
            return "busy";
        case XERR_EXIST:
            return "exists already";
        case XERR_XDEV:
            return "on another device";
        case XERR_NODEV:
            return "no such device";
        case XERR_NOTDIR:
            return "not a folder";
        case XERR_ISDIR:
            return "a folder";
        case XERR_INVAL:
            return "an argument was refused";
        case XERR_NFILE:
            return "too many open files in the system";
        case XERR_MFILE:
            return "too many open files";
        case XERR_NOTTY:
            return "not a terminal";
        case XERR_TXTBSY:
            return "the program file is in use";
        case XERR_FBIG:
            return "the file, or what was asked for, is too big";
        case XERR_NOSPC:
            return "the disk is full";
        case XERR_SPIPE:
            return "cannot seek";
        case XERR_ROFS:
            return "the file system is read-only";
        case XERR_MLINK:
            return "too many links";
        case XERR_PIPE:
            return "the pipe is broken";
        case XERR_DOM:
            return "outside the domain";
        case XERR_RANGE:
            return "outside the range";
        case XERR_DEADLK:
            return "would deadlock";
        case XERR_NAMETOOLONG:
            return "the name is too long";
        case XERR_NOLCK:
            return "no locks left";
        case XERR_NOSYS:
            return "not available here";
        case XERR_NOTEMPTY:
            return "the folder is not empty";
        case XERR_LOOP:
            return "too many symbolic links";
        case XERR_NOMSG:
            return "no such message";
        case XERR_IDRM:
            return "the identifier is gone";
        case XERR_CHRNG:
            return "the channel number is out of range";
        case XERR_L2NSYNC:
            return "level 2 is not synchronised";
        case XERR_L3HLT:
            return "level 3 halted";
        case XERR_L3RST:
            return "level 3 was reset";
        case XERR_LNRNG:
            return "the link number is out of range";
        case XERR_UNATCH:
            return "the protocol driver is not attached";
        case XERR_NOCSI:
            return "no such structure";
        case XERR_L2HLT:
            return "level 2 halted";
        case XERR_BADE:
            return "bad exchange";
        case XERR_BADR:
            return "bad request descriptor";
        case XERR_XFULL:
            return "the exchange is full";
        case XERR_NOANO:
            return "no anode";
        case XERR_BADRQC:
            return "bad request code";
        case XERR_BADSLT:
            return "bad slot";
        case XERR_BFONT:
            return "bad font file";
        case XERR_NOSTR:
            return "not a stream";
        case XERR_NODATA:
            return "no data";
        case XERR_TIME:
            return "the timer expired";
        case XERR_NOSR:
            return "no stream resources";
        case XERR_NONET:
            return "not on a network";
        case XERR_NOPKG:
            return "the package is not installed";
        case XERR_REMOTE:
            return "the object is remote";
        case XERR_NOLINK:
            return "the link was cut";
        case XERR_ADV:
            return "advertising failed";
        case XERR_SRMNT:
            return "a remote mount failed";
        case XERR_COMM:
            return "sending failed";
        case XERR_PROTO:
            return "the protocol was broken";
        case XERR_MULTIHOP:
            return "too many hops";
        case XERR_DOTDOT:
            return "a remote file system failed";
        case XERR_BADMSG:
            return "bad message";
        case XERR_OVERFLOW:
            return "the value is too large for its type";
        case XERR_NOTUNIQ:
            return "the name is not unique";
        case XERR_BADFD:
            return "the descriptor is in a bad state";
        case XERR_REMCHG:
            return "the remote address changed";
        case XERR_LIBACC:
            return "a shared library cannot be used";
        case XERR_LIBBAD:
            return "a shared library is damaged";
        case XERR_LIBSCN:
            return "a section of a library is damaged";
        case XERR_LIBMAX:
            return "too many shared libraries";
        case XERR_LIBEXEC:
            return "a shared library is no program";
        case XERR_ILSEQ:
            return "the bytes are no text";
        case XERR_RESTART:
            return "the call is to be restarted";
        case XERR_STRPIPE:
            return "a stream pipe failed";
        case XERR_USERS:
            return "too many users";
        case XERR_NOTSOCK:
            return "not a socket";
        case XERR_DESTADDRREQ:
            return "a destination is missing";
        case XERR_MSGSIZE:
            return "the message is too long";
        case XERR_PROTOTYPE:
            return "the protocol does not fit the socket";
        case XERR_NOPROTOOPT:
            return "no such protocol option";
        case XERR_PROTONOSUPPORT:
            return "the protocol is not supported";
        case XERR_SOCKTNOSUPPORT:
            return "the socket type is not supported";
        case XERR_OPNOTSUPP:
            return "the operation is not supported";
        case XERR_PFNOSUPPORT:
            return "the protocol family is not supported";
        case XERR_AFNOSUPPORT:
            return "the address family is not supported";
        case XERR_ADDRINUSE:
            return "the name or address is in use";
        case XERR_ADDRNOTAVAIL:
            return "the address is not available";
        case XERR_NETDOWN:
            return "the network is down";
        case XERR_NETUNREACH:
            return "the network cannot be reached";
        case XERR_NETRESET:
            return "the network dropped the connection";
        case XERR_CONNABORTED:
            return "the connection was aborted";
        case XERR_CONNRESET:
            return "the peer reset the connection";
        case XERR_NOBUFS:
            return "no buffers left";
        case XERR_ISCONN:
            return "connected already";
        case XERR_NOTCONN:
            return "not connected";
        case XERR_SHUTDOWN:
            return "the connection was shut down";
        case XERR_TOOMANYREFS:
            return "too many references";
        case XERR_TIMEDOUT:
            return "it took too long";
        case XERR_CONNREFUSED:
            return "the connection was refused";
        case XERR_HOSTDOWN:
            return "the machine is down";
        case XERR_HOSTUNREACH:
            return "the machine cannot be reached";
        case XERR_ALREADY:
            return "under way already";
        case XERR_INPROGRESS:
            return "under way";
        case XERR_STALE:
            return "the file handle is stale";
        case XERR_UCLEAN:
            return "the structure needs cleaning";
        case XERR_NOTNAM:
            return "not a named type file";
        case XERR_NAVAIL:
            return "no semaphores available";
        case XERR_ISNAM:
            return "a named type file";
        case XERR_REMOTEIO:
            return "remote input or output failed";
        case XERR_DQUOT:
            return "the quota is used up";
        case XERR_NOMEDIUM:
            return "no medium";
        case XERR_MEDIUMTYPE:
            return "wrong type of medium";
        case XERR_CANCELED:
            return "cancelled";
        case XERR_NOKEY:
            return "no such key";
        case XERR_KEYEXPIRED:
            return "the key has expired";
        case XERR_KEYREVOKED:
            return "the key was revoked";
        case XERR_KEYREJECTED:
            return "the key was rejected";
        case XERR_OWNERDEAD:
            return "the owner died";
        case XERR_NOTRECOVERABLE:
            return "the state cannot be recovered";
        case XERR_RFKILL:
            return "a radio is switched off";
        case XERR_HWPOISON:
            return "the hardware found a bad page";
    }
    return "";
}

constexpr XErrCode kCodes[] = {
#define BRIDGECTL_CODE(code, name) XERR_##name,
    XERR_CODES(BRIDGECTL_CODE)
#undef BRIDGECTL_CODE
};

struct WindowsRow {
    std::int32_t windowsError;
    XErr code;
};

constexpr WindowsRow kWindowsRows[] = {
#define BRIDGECTL_ROW(windowsError, windowsName, name) {windowsError, XERR_##name},
    XERR_WINDOWS_ERRORS(BRIDGECTL_ROW)
#undef BRIDGECTL_ROW
};

std::vector<std::int32_t> windowsErrorsOf(XErr code) {
    std::vector<std::int32_t> errors;
    for (const WindowsRow& row : kWindowsRows) {
        if (row.code == code) errors.push_back(row.windowsError);
    }
    return errors;
}

std::string listOf(const std::vector<std::int32_t>& errors) {
    std::string text;
    for (const std::int32_t error : errors) {
        text += (text.empty() ? "" : ", ") + std::to_string(error);
    }
    return text;
}

std::optional<ResultCode> windowsResult(XErr code) {
    // The failure's own number; small Windows errors without an equivalent begin at the base.
    if (code >= 0 && code < XERR_WINDOWS_BASE) return std::nullopt;
    const std::uint32_t error =
        static_cast<std::uint32_t>(code) - static_cast<std::uint32_t>(XERR_WINDOWS_BASE);
    const std::string text = windowsErrorText(error);
    return ResultCode{code,
                      "",
                      "Windows error " + std::to_string(error) + (text.empty() ? "" : ": " + text),
                      {static_cast<std::int32_t>(error)}};
}

}  // namespace

std::vector<ResultCode> resultCodes() {
    std::vector<ResultCode> codes;
    for (const XErrCode code : kCodes) {
        codes.push_back({code, xerrName(code), meaningOf(code), windowsErrorsOf(code)});
    }
    return codes;
}

std::optional<ResultCode> findResultCode(std::string_view text) {
    for (const ResultCode& code : resultCodes()) {
        if (text == std::to_string(code.code) || text == code.name ||
            text == std::string_view(code.name).substr(5)) {
            return code;
        }
    }
    XErr number = 0;
    if (!confParseI32(text, number) || std::to_string(number) != text) return std::nullopt;
    return windowsResult(number);
}

std::vector<TableRow> resultCodeRows() {
    std::vector<TableRow> rows{{"CODE", "NAME", "MEANING", "WINDOWS ERRORS"}};
    for (const ResultCode& code : resultCodes()) {
        rows.push_back(
            {std::to_string(code.code), code.name, code.meaning, listOf(code.windowsErrors)});
    }
    return rows;
}

JsonValue resultCodeJson(const ResultCode& code) {
    const std::vector<std::int32_t>& errors = code.windowsErrors;
    return JsonObject{{"code", code.code},
                      {"name", code.name.empty() ? JsonValue(nullptr) : JsonValue(code.name)},
                      {"meaning", code.meaning},
                      {"windowsErrors", JsonArray(errors.begin(), errors.end())}};
}

std::string resultCodesMarkdown() {
    std::vector<TableRow> rows = resultCodeRows();
    rows[0] = {"code", "name", "meaning", "Windows errors"};
    for (std::size_t i = 1; i < rows.size(); ++i) rows[i][1] = "`" + rows[i][1] + "`";
    return markdownTable(rows);
}
