#include "NineEvents.h"

#include <string>

#include "support/EventPackets.h"
#include "support/RawServer.h"

std::string nineEvents() {
    return appInstalledPacket("Nougat64", "com.größe", "Main", "第二 App", -5, "1.0β", "C:\\Ü.png",
                              1) +
           appUninstalledPacket("Nougat64", "com.größe") +
           apkInstallCompletedPacket("Nougat64", -1, "C:\\Пример.apk") +
           instanceListUpdatedPacket() + installImageProgressPacket("Nougat32", 1, 33.125) +
           createInstanceCompletedPacket(-2, "Nougat64_1") +
           instanceConfigurationChangedPacket("Nougat64") +
           appDisplayedPacket("Nougat64", "com.größe") +
           accountListUpdatedPacket("Nougat64", "jürgen@example.com", 2);
}

Lines nineLines() {
    return {"appInstalled Nougat64|com.größe|Main|第二 App|-5|1.0β|C:\\Ü.png|1",
            "appUninstalled Nougat64|com.größe",
            "apkInstallCompleted Nougat64|-1|C:\\Пример.apk",
            "instanceListUpdated",
            "installImageProgress Nougat32|1|33.125",
            "createInstanceCompleted -2|Nougat64_1",
            "instanceConfigurationChanged Nougat64",
            "appDisplayed Nougat64|com.größe",
            "accountListUpdated Nougat64|jürgen@example.com|2"};
}

void* connectToHelper() { return connectWhenFree(kHelperServer); }

Lines with(Lines lines, const Lines& more) {
    lines.insert(lines.end(), more.begin(), more.end());
    return lines;
}
