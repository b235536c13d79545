#include <bridge/bridge.hpp>
#include <chrono>
#include <cstdio>

void tour() {
    bridge::useFolders("C:\\Data", "C:\\QX-Bridge\\tools");  // for development, before init()
    for (const auto& problem : bridge::preflight(bridge::Client::Helper)) {  // before init()
        std::puts((problem.what + ": " + problem.remedy).c_str());
    }

    const auto nougat = bridge::keys::instance("Nougat64");
    bridge::conf::set(nougat.dpi, bridge::conf::get(nougat.dpi) + 80).orThrow();
    bridge::conf::commit().orThrow();  // an Error names the code, the file and the log

    bridge::EventQueue events({"appInstalled"});  // or functions, as bridge::Callbacks
    if (const auto result = bridge::listen(); !result) std::puts(result.text.c_str());
    const auto work = bridge::work::installApk("Nougat64", "C:\\a.apk");
    if (!work.wait(std::chrono::minutes(5))) std::puts("not installed yet");
}
