#ifndef TESTS_SCENE_H
#define TESTS_SCENE_H

#include <string>
#include <vector>

#include "support/ChildProcess.h"

// A piece of a test that runs in a process of its own: for what is fatal, and for what is kept once
// per process. The test binary starts itself again with the scene's name.
//
//     SCENE(readsUnknownKey) { ...; return 0; }
//     TEST(...) { EXPECT_EQ(runScene("readsUnknownKey").status, kFatalStatus); }
using SceneArguments = std::vector<std::string>;
using SceneFunction = int (*)(const SceneArguments& arguments);

struct SceneEntry {
    SceneEntry(const char* name, SceneFunction function);
};

#define SCENE(name)                                            \
    static int scene_##name(const SceneArguments& arguments);  \
    static const SceneEntry entry_##name(#name, scene_##name); \
    static int scene_##name([[maybe_unused]] const SceneArguments& arguments)

ChildResult runScene(const std::string& name, const SceneArguments& arguments = {},
                     const ChildOptions& options = {});
ChildProcess startScene(const std::string& name, const SceneArguments& arguments = {},
                        const ChildOptions& options = {});

#endif
