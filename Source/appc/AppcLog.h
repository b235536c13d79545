#ifndef APPC_APPCLOG_H
#define APPC_APPCLOG_H

#include "xpl/Xlog.h"

// Every file of this module logs as one.
constexpr XlogModule kLog{XlogTag::APPC, "Source/appc/Appc"};

#endif
