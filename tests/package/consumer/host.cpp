#include <bridge/bridge.hpp>
#include <cstdio>

int main() {
    if (!bridge::init(bridge::Client::Helper)) return 1;
    std::fputs(bridge::instances().valueOr("").c_str(), stdout);
    bridge::finish();
}
