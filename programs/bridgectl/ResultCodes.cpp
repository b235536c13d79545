#include "ResultCodes.h"

#include <cstddef>

#include "WindowsErrorText.h"
#include "conf/ConfNumber.h"
#include "xpl/XerrTable.h"

namespace {

// The compiler reports a code that is missing here.
const char* meaningOf(XErrCode code) {
    switch (code) {
        case XErrCode::XERR_FAILURE:
            return "it failed; the log has the cause";
        case XErrCode::XERR_SUCCESS:
            return "it worked";
        case XErrCode::XERR_PERM:
            return "not permitted";
        case XErrCode::XERR_NOENT:
            return "no such file or folder";
        case XErrCode::XERR_SRCH:
            return "no such process";
        case XErrCode::XERR_INTR:
            return "interrupted";
        case XErrCode::XERR_IO:
            return "input or output failed";
        case XErrCode::XERR_NXIO:
            return "no such device or address";
        case XErrCode::XERR_2BIG:
            return "too long";
        case XErrCode::XERR_NOEXEC:
            return "not an executable format";
        case XErrCode::XERR_BADF:
            return "bad handle";
        case XErrCode::XERR_CHILD:
            return "no child process";
        case XErrCode::XERR_AGAIN:
            return "not now; try again";
        case XErrCode::XERR_NOMEM:
            return "not enough memory";
        case XErrCode::XERR_ACCES:
            return "access denied";
        case XErrCode::XERR_FAULT:
            return "bad address";
        case XErrCode::XERR_NOTBLK:
            return "not a block device";
        case XErrCode::XERR_BUSY:
            return "busy";
        case XErrCode::XERR_EXIST:
            return "exists already";
        case XErrCode::XERR_XDEV:
            return "on another device";
        case XErrCode::XERR_NODEV:
            return "no such device";
        case XErrCode::XERR_NOTDIR:
            return "not a folder";
        case XErrCode::XERR_ISDIR:
            return "a folder";
        case XErrCode::XERR_INVAL:
            return "an argument was refused";
        case XErrCode::XERR_NFILE:
            return "too many open files in the system";
        case XErrCode::XERR_MFILE:
            return "too many open files";
        case XErrCode::XERR_NOTTY:
            return "not a terminal";
        case XErrCode::XERR_TXTBSY:
            return "the program file is in use";
        case XErrCode::XERR_FBIG:
            return "the file, or what was asked for, is too big";
        case XErrCode::XERR_NOSPC:
            return "the disk is full";
        case XErrCode::XERR_SPIPE:
            return "cannot seek";
        case XErrCode::XERR_ROFS:
            return "the file system is read-only";
        case XErrCode::XERR_MLINK:
            return "too many links";
        case XErrCode::XERR_PIPE:
            return "the pipe is broken";
        case XErrCode::XERR_DOM:
            return "outside the domain";
        case XErrCode::XERR_RANGE:
            return "outside the range";
        case XErrCode::XERR_DEADLK:
            return "would deadlock";
        case XErrCode::XERR_NAMETOOLONG:
            return "the name is too long";
        case XErrCode::XERR_NOLCK:
            return "no locks left";
        case XErrCode::XERR_NOSYS:
            return "not available here";
        case XErrCode::XERR_NOTEMPTY:
            return "the folder is not empty";
        case XErrCode::XERR_LOOP:
            return "too many symbolic links";
        case XErrCode::XERR_NOMSG:
            return "no such message";
        case XErrCode::XERR_IDRM:
            return "the identifier is gone";
        case XErrCode::XERR_CHRNG:
            return "the channel number is out of range";
        case XErrCode::XERR_L2NSYNC:
            return "level 2 is not synchronised";
        case XErrCode::XERR_L3HLT:
            return "level 3 halted";
        case XErrCode::XERR_L3RST:
            return "level 3 was reset";
        case XErrCode::XERR_LNRNG:
            return "the link number is out of range";
        case XErrCode::XERR_UNATCH:
            return "the protocol driver is not attached";
        case XErrCode::XERR_NOCSI:
            return "no such structure";
        case XErrCode::XERR_L2HLT:
            return "level 2 halted";
        case XErrCode::XERR_BADE:
            return "bad exchange";
        case XErrCode::XERR_BADR:
            return "bad request descriptor";
        case XErrCode::XERR_XFULL:
            return "the exchange is full";
        case XErrCode::XERR_NOANO:
            return "no anode";
        case XErrCode::XERR_BADRQC:
            return "bad request code";
        case XErrCode::XERR_BADSLT:
            return "bad slot";
        case XErrCode::XERR_BFONT:
            return "bad font file";
        case XErrCode::XERR_NOSTR:
            return "not a stream";
        case XErrCode::XERR_NODATA:
            return "no data";
        case XErrCode::XERR_TIME:
            return "the timer expired";
        case XErrCode::XERR_NOSR:
            return "no stream resources";
        case XErrCode::XERR_NONET:
            return "not on a network";
        case XErrCode::XERR_NOPKG:
            return "the package is not installed";
        case XErrCode::XERR_REMOTE:
            return "the object is remote";
        case XErrCode::XERR_NOLINK:
            return "the link was cut";
        case XErrCode::XERR_ADV:
            return "advertising failed";
        case XErrCode::XERR_SRMNT:
            return "a remote mount failed";
        case XErrCode::XERR_COMM:
            return "sending failed";
        case XErrCode::XERR_PROTO:
            return "the protocol was broken";
        case XErrCode::XERR_MULTIHOP:
            return "too many hops";
        case XErrCode::XERR_DOTDOT:
            return "a remote file system failed";
        case XErrCode::XERR_BADMSG:
            return "bad message";
        case XErrCode::XERR_OVERFLOW:
            return "the value is too large for its type";
        case XErrCode::XERR_NOTUNIQ:
            return "the name is not unique";
        case XErrCode::XERR_BADFD:
            return "the descriptor is in a bad state";
        case XErrCode::XERR_REMCHG:
            return "the remote address changed";
        case XErrCode::XERR_LIBACC:
            return "a shared library cannot be used";
        case XErrCode::XERR_LIBBAD:
            return "a shared library is damaged";
        case XErrCode::XERR_LIBSCN:
            return "a section of a library is damaged";
        case XErrCode::XERR_LIBMAX:
            return "too many shared libraries";
        case XErrCode::XERR_LIBEXEC:
            return "a shared library is no program";
        case XErrCode::XERR_ILSEQ:
            return "the bytes are no text";
        case XErrCode::XERR_RESTART:
            return "the call is to be restarted";
        case XErrCode::XERR_STRPIPE:
            return "a stream pipe failed";
        case XErrCode::XERR_USERS:
            return "too many users";
        case XErrCode::XERR_NOTSOCK:
            return "not a socket";
        case XErrCode::XERR_DESTADDRREQ:
            return "a destination is missing";
        case XErrCode::XERR_MSGSIZE:
            return "the message is too long";
        case XErrCode::XERR_PROTOTYPE:
            return "the protocol does not fit the socket";
        case XErrCode::XERR_NOPROTOOPT:
            return "no such protocol option";
        case XErrCode::XERR_PROTONOSUPPORT:
            return "the protocol is not supported";
        case XErrCode::XERR_SOCKTNOSUPPORT:
            return "the socket type is not supported";
        case XErrCode::XERR_OPNOTSUPP:
            return "the operation is not supported";
        case XErrCode::XERR_PFNOSUPPORT:
            return "the protocol family is not supported";
        case XErrCode::XERR_AFNOSUPPORT:
            return "the address family is not supported";
        case XErrCode::XERR_ADDRINUSE:
            return "the name or address is in use";
        case XErrCode::XERR_ADDRNOTAVAIL:
            return "the address is not available";
        case XErrCode::XERR_NETDOWN:
            return "the network is down";
        case XErrCode::XERR_NETUNREACH:
            return "the network cannot be reached";
        case XErrCode::XERR_NETRESET:
            return "the network dropped the connection";
        case XErrCode::XERR_CONNABORTED:
            return "the connection was aborted";
        case XErrCode::XERR_CONNRESET:
            return "the peer reset the connection";
        case XErrCode::XERR_NOBUFS:
            return "no buffers left";
        case XErrCode::XERR_ISCONN:
            return "connected already";
        case XErrCode::XERR_NOTCONN:
            return "not connected";
        case XErrCode::XERR_SHUTDOWN:
            return "the connection was shut down";
        case XErrCode::XERR_TOOMANYREFS:
            return "too many references";
        case XErrCode::XERR_TIMEDOUT:
            return "it took too long";
        case XErrCode::XERR_CONNREFUSED:
            return "the connection was refused";
        case XErrCode::XERR_HOSTDOWN:
            return "the machine is down";
        case XErrCode::XERR_HOSTUNREACH:
            return "the machine cannot be reached";
        case XErrCode::XERR_ALREADY:
            return "under way already";
        case XErrCode::XERR_INPROGRESS:
            return "under way";
        case XErrCode::XERR_STALE:
            return "the file handle is stale";
        case XErrCode::XERR_UCLEAN:
            return "the structure needs cleaning";
        case XErrCode::XERR_NOTNAM:
            return "not a named type file";
        case XErrCode::XERR_NAVAIL:
            return "no semaphores available";
        case XErrCode::XERR_ISNAM:
            return "a named type file";
        case XErrCode::XERR_REMOTEIO:
            return "remote input or output failed";
        case XErrCode::XERR_DQUOT:
            return "the quota is used up";
        case XErrCode::XERR_NOMEDIUM:
            return "no medium";
        case XErrCode::XERR_MEDIUMTYPE:
            return "wrong type of medium";
        case XErrCode::XERR_CANCELED:
            return "cancelled";
        case XErrCode::XERR_NOKEY:
            return "no such key";
        case XErrCode::XERR_KEYEXPIRED:
            return "the key has expired";
        case XErrCode::XERR_KEYREVOKED:
            return "the key was revoked";
        case XErrCode::XERR_KEYREJECTED:
            return "the key was rejected";
        case XErrCode::XERR_OWNERDEAD:
            return "the owner died";
        case XErrCode::XERR_NOTRECOVERABLE:
            return "the state cannot be recovered";
        case XErrCode::XERR_RFKILL:
            return "a radio is switched off";
        case XErrCode::XERR_HWPOISON:
            return "the hardware found a bad page";
    }
    return "";
}

std::string listOf(const std::vector<std::int32_t>& errors) {
    std::string text;
    for (const std::int32_t error : errors) {
        text += (text.empty() ? "" : ", ") + std::to_string(error);
    }
    return text;
}

std::optional<ResultCode> windowsResult(XErr code) {
    // Codes without a name below the base are not Windows errors. Small Windows errors without an
    // equivalent start at the base.
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
    for (const XErr code : xerrCodes()) {
        codes.push_back({code, xerrName(code), meaningOf(static_cast<XErrCode>(code)),
                         xerrWindowsErrors(code)});
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
