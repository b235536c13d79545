"""The files to mutate, the tests that must detect the mutants, and the tests that do not run."""

# The files that parse and print bytes; for some, only these classes and functions. Tables are excluded
# (conf's properties, the requests of plr and mim, the status codes), and so is the listing of instances,
# because only the hosts' tests cover it.
CORES = {
    "Source/xpl/Xbytes.h": None,
    "Source/xpl/Xclock.cpp": None,
    "Source/xpl/Xerr.cpp": None,
    "Source/xpl/XfilePath.cpp": None,
    "Source/xpl/Xlog.cpp": ["baseName", "tagName", "levelLetter", "setThreshold", "applyLevelItem",
                            "xlogSetLevels"],
    "Source/xpl/XlogLine.cpp": None,
    "Source/xpl/XprocQuote.cpp": None,
    "Source/utl/UtlFolders.cpp": ["isSeparator", "rootNameLength", "utlIsAbsolute",
                                  "utlGlobalObjectName", "utlLocalObjectName"],
    "Source/utl/UtlImages.cpp": ["utlFindImageTrait", "utlGetImageTrait", "utlImageNameOfInstance",
                                 "utlGetAbiListFromAbiInt"],
    "Source/utl/UtlJson.cpp": None,
    "Source/conf/ConfAccess.cpp": ["confSplitMultiString", "confJoinMultiString"],
    "Source/conf/ConfCatalogue.cpp": None,
    "Source/conf/ConfCommit.cpp": ["lineAt"],
    "Source/conf/ConfInstanceValues.cpp": None,
    "Source/conf/ConfKey.h": None,
    "Source/conf/ConfLoad.cpp": ["confReadFile", "confApplyFile", "confReport"],
    "Source/conf/ConfNumber.cpp": None,
    "Source/conf/ConfText.cpp": None,
    "Source/conf/ConfText.h": None,
    "Source/conf/ConfView.cpp": None,
    "Source/conf/ConfView.h": None,
    "Source/conf/ConfViewText.cpp": None,
    "Source/appc/AppcJson.cpp": None,
    "Source/ipc/IpcConnection.cpp": ["numberAt", "unread", "hasUnread", "dropHandedOver", "readMore",
                                     "beginPacket", "readBody", "replyBuffer", "writeReply",
                                     "consumePacket", "dispatch", "ipcReadCommand"],
    "Source/ipc/IpcPacket.cpp": None,
    "Source/ipc/IpcPacket.h": None,
    "Source/ipc/IpcRequest.cpp": ["shownList"],
    "Source/bridge/BridgeDec.cpp": None,
}

# The layer's own tests, then the tests of higher layers.
TESTS = {
    "xpl": ["xpl_test", "utl_test", "conf_test", "appc_test", "bridge_layer_test", "ipc_test"],
    "utl": ["utl_test", "appc_test", "conf_test", "bridge_layer_test"],
    "conf": ["conf_test", "bridge_layer_test"],
    "appc": ["appc_test", "bridge_layer_test"],
    "ipc": ["ipc_test", "bridge_layer_test"],
    "bridge": ["bridge_layer_test"],
}

# Tests that take long, or depend on the machine's speed, and test something else.
NOT_ASKED = {
    "ConfCrowdTest.*": "processes that compete for a file",
    "IpcClientTest.AReplyIsWaitedForThirtySeconds": "a time limit",
    "IpcClientTest.APeerThatNeverReads*": "a time limit",
    "IpcClientTest.ALateReply*": "a time limit",
    "IpcPeerDeathTest.*": "many connections",
    "IpcServerLoadTest.*": "many connections",
    "IpcServerTest.MalformedPacketsLeaveNoRecordAndNoHandle": "handles",
    "IpcServerTest.StartingAndStoppingGivesEveryHandleBack": "handles",
    "*.ChildrenThatStartMeanwhileNeverBlock*": "inheritance of files",
    "AppcSaveTest.TwoProcessesThat*": "processes that compete for a file",
    "XplTest.*": "rotation of the log",
    "XrcuTest.*": "threads that compete for a value",
    "XseqlockTest.*": "threads that compete for a value",
    "*.*WaitForEachOther*": "locks",
}


def tests_of(path):
    return TESTS[path.split("/")[1]]
