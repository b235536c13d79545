#ifndef XPL_XERRTABLE_H
#define XPL_XERRTABLE_H

// Status codes and Windows errors as X-macros. Every list of codes, names and translations is made
// from these rows.

// X(code, name): Linux errno values. Linux does not use 41 and 58.
#define XERR_CODES(X)      \
    X(-1, FAILURE)         \
    X(0, SUCCESS)          \
    X(1, PERM)             \
    X(2, NOENT)            \
    X(3, SRCH)             \
    X(4, INTR)             \
    X(5, IO)               \
    X(6, NXIO)             \
    X(7, 2BIG)             \
    X(8, NOEXEC)           \
    X(9, BADF)             \
    X(10, CHILD)           \
    X(11, AGAIN)           \
    X(12, NOMEM)           \
    X(13, ACCES)           \
    X(14, FAULT)           \
    X(15, NOTBLK)          \
    X(16, BUSY)            \
    X(17, EXIST)           \
    X(18, XDEV)            \
    X(19, NODEV)           \
    X(20, NOTDIR)          \
    X(21, ISDIR)           \
    X(22, INVAL)           \
    X(23, NFILE)           \
    X(24, MFILE)           \
    X(25, NOTTY)           \
    X(26, TXTBSY)          \
    X(27, FBIG)            \
    X(28, NOSPC)           \
    X(29, SPIPE)           \
    X(30, ROFS)            \
    X(31, MLINK)           \
    X(32, PIPE)            \
    X(33, DOM)             \
    X(34, RANGE)           \
    X(35, DEADLK)          \
    X(36, NAMETOOLONG)     \
    X(37, NOLCK)           \
    X(38, NOSYS)           \
    X(39, NOTEMPTY)        \
    X(40, LOOP)            \
    X(42, NOMSG)           \
    X(43, IDRM)            \
    X(44, CHRNG)           \
    X(45, L2NSYNC)         \
    X(46, L3HLT)           \
    X(47, L3RST)           \
    X(48, LNRNG)           \
    X(49, UNATCH)          \
    X(50, NOCSI)           \
    X(51, L2HLT)           \
    X(52, BADE)            \
    X(53, BADR)            \
    X(54, XFULL)           \
    X(55, NOANO)           \
    X(56, BADRQC)          \
    X(57, BADSLT)          \
    X(59, BFONT)           \
    X(60, NOSTR)           \
    X(61, NODATA)          \
    X(62, TIME)            \
    X(63, NOSR)            \
    X(64, NONET)           \
    X(65, NOPKG)           \
    X(66, REMOTE)          \
    X(67, NOLINK)          \
    X(68, ADV)             \
    X(69, SRMNT)           \
    X(70, COMM)            \
    X(71, PROTO)           \
    X(72, MULTIHOP)        \
    X(73, DOTDOT)          \
    X(74, BADMSG)          \
    X(75, OVERFLOW)        \
    X(76, NOTUNIQ)         \
    X(77, BADFD)           \
    X(78, REMCHG)          \
    X(79, LIBACC)          \
    X(80, LIBBAD)          \
    X(81, LIBSCN)          \
    X(82, LIBMAX)          \
    X(83, LIBEXEC)         \
    X(84, ILSEQ)           \
    X(85, RESTART)         \
    X(86, STRPIPE)         \
    X(87, USERS)           \
    X(88, NOTSOCK)         \
    X(89, DESTADDRREQ)     \
    X(90, MSGSIZE)         \
    X(91, PROTOTYPE)       \
    X(92, NOPROTOOPT)      \
    X(93, PROTONOSUPPORT)  \
    X(94, SOCKTNOSUPPORT)  \
    X(95, OPNOTSUPP)       \
    X(96, PFNOSUPPORT)     \
    X(97, AFNOSUPPORT)     \
    X(98, ADDRINUSE)       \
    X(99, ADDRNOTAVAIL)    \
    X(100, NETDOWN)        \
    X(101, NETUNREACH)     \
    X(102, NETRESET)       \
    X(103, CONNABORTED)    \
    X(104, CONNRESET)      \
    X(105, NOBUFS)         \
    X(106, ISCONN)         \
    X(107, NOTCONN)        \
    X(108, SHUTDOWN)       \
    X(109, TOOMANYREFS)    \
    X(110, TIMEDOUT)       \
    X(111, CONNREFUSED)    \
    X(112, HOSTDOWN)       \
    X(113, HOSTUNREACH)    \
    X(114, ALREADY)        \
    X(115, INPROGRESS)     \
    X(116, STALE)          \
    X(117, UCLEAN)         \
    X(118, NOTNAM)         \
    X(119, NAVAIL)         \
    X(120, ISNAM)          \
    X(121, REMOTEIO)       \
    X(122, DQUOT)          \
    X(123, NOMEDIUM)       \
    X(124, MEDIUMTYPE)     \
    X(125, CANCELED)       \
    X(126, NOKEY)          \
    X(127, KEYEXPIRED)     \
    X(128, KEYREVOKED)     \
    X(129, KEYREJECTED)    \
    X(130, OWNERDEAD)      \
    X(131, NOTRECOVERABLE) \
    X(132, RFKILL)         \
    X(133, HWPOISON)

// X(windowsError, windowsName, name): Windows errors with an equivalent. ERROR_ALREADY_EXISTS (183)
// becomes ADDRINUSE, not EXIST: callers compare against 98.
#define XERR_WINDOWS_ERRORS(X)                      \
    X(2, ERROR_FILE_NOT_FOUND, NOENT)               \
    X(3, ERROR_PATH_NOT_FOUND, NOENT)               \
    X(4, ERROR_TOO_MANY_OPEN_FILES, NFILE)          \
    X(5, ERROR_ACCESS_DENIED, ACCES)                \
    X(6, ERROR_INVALID_HANDLE, BADF)                \
    X(8, ERROR_NOT_ENOUGH_MEMORY, NOMEM)            \
    X(14, ERROR_OUTOFMEMORY, NOMEM)                 \
    X(18, ERROR_NO_MORE_FILES, NOENT)               \
    X(19, ERROR_WRITE_PROTECT, ACCES)               \
    X(21, ERROR_NOT_READY, IO)                      \
    X(38, ERROR_HANDLE_EOF, NODATA)                 \
    X(39, ERROR_HANDLE_DISK_FULL, NOSPC)            \
    X(50, ERROR_NOT_SUPPORTED, NOSYS)               \
    X(80, ERROR_FILE_EXISTS, EXIST)                 \
    X(87, ERROR_INVALID_PARAMETER, INVAL)           \
    X(109, ERROR_BROKEN_PIPE, PIPE)                 \
    X(112, ERROR_DISK_FULL, NOSPC)                  \
    X(120, ERROR_CALL_NOT_IMPLEMENTED, NOSYS)       \
    X(123, ERROR_INVALID_NAME, INVAL)               \
    X(145, ERROR_DIR_NOT_EMPTY, NOTEMPTY)           \
    X(161, ERROR_BAD_PATHNAME, NOENT)               \
    X(170, ERROR_BUSY, BUSY)                        \
    X(183, ERROR_ALREADY_EXISTS, ADDRINUSE)         \
    X(206, ERROR_FILENAME_EXCED_RANGE, NAMETOOLONG) \
    X(234, ERROR_MORE_DATA, MSGSIZE)                \
    X(267, ERROR_DIRECTORY, NOTDIR)                 \
    X(288, ERROR_NOT_OWNER, PERM)                   \
    X(487, ERROR_INVALID_ADDRESS, FAULT)            \
    X(997, ERROR_IO_PENDING, ALREADY)               \
    X(998, ERROR_NOACCESS, FAULT)                   \
    X(1006, ERROR_FILE_INVALID, INVAL)              \
    X(1117, ERROR_IO_DEVICE, IO)                    \
    X(1142, ERROR_TOO_MANY_LINKS, MLINK)            \
    X(1392, ERROR_FILE_CORRUPT, IO)                 \
    X(1393, ERROR_DISK_CORRUPT, IO)                 \
    X(1460, ERROR_TIMEOUT, TIMEDOUT)

#endif
