#ifndef CONF_CONFLOG_H
#define CONF_CONFLOG_H

#include "xpl/Xlog.h"

// Every file of this module logs as one.
constexpr XlogModule kLog{XlogTag::CONF, "Source/conf/Conf"};

#endif
