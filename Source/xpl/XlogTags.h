#ifndef XPL_XLOGTAGS_H
#define XPL_XLOGTAGS_H

// X(tag): the subsystems that log, in the order of their numbers. The product's other programs
// share this table, so a level specification means the same in all of them.
// clang-format off
#define XLOG_TAGS(X)                                                                           \
    X(AGA) X(APPC) X(AUD) X(BRIDGE) X(CAM) X(CLD) X(CONF) X(CSM) X(DCRD) X(GCALL)              \
    X(GR) X(GRM) X(HCALL) X(HST) X(IMAP) X(IMGD) X(INP) X(IPC) X(KMM) X(MIM)                   \
    X(MNS) X(PGA) X(PGAIPC) X(PLR) X(SER) X(UI) X(UTL) X(VDES) X(VMMGR) X(WERH)                \
    X(XCOND) X(XFILE) X(XLIB) X(XLOCK) X(XLOG) X(XMEM) X(XMUTEX) X(XPROC) X(XSOCK) X(XSTR)     \
    X(XTHR) X(XTIME) X(XTIMER)
// clang-format on

#endif
