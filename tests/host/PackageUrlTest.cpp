#include "export/PackageUrl.h"

#include <gtest/gtest.h>

TEST(PackageUrlTest, PartsAreEncodedAndOrdered) {
    const struct {
        TPackageUrl package;
        const char* url;
    } cases[] = {
        {{"debian", "bash", "5.2.15-2+b7", "amd64", "debian-12", "bash@5.2.15-2"},
         "pkg:deb/debian/bash@5.2.15-2%2Bb7?arch=amd64&distro=debian-12&upstream=bash%405.2.15-2"},
        {{"ubuntu", "vim", "2:9.0~1_a-1"}, "pkg:deb/ubuntu/vim@2:9.0~1_a-1"},
        {{"debian", "g++", "", "all"}, "pkg:deb/debian/g%2B%2B?arch=all"},
        {{"Debian", "Name", "RC1", "", "Debian-12"}, "pkg:deb/debian/name@RC1?distro=Debian-12"},
        {{"debian", "a/b@c?d#e%f g&h=i", "1/2"}, "pkg:deb/debian/a%2Fb%40c%3Fd%23e%25f%20g%26h%3Di@1%2F2"},
        {{"debian", "\xC3\xA4\x7F\x01", "1"}, "pkg:deb/debian/%C3%A4%7F%01@1"},
        {{"fedora", "GraphicsMagick", "2:1.3+x-4.fc40", "x86_64", "fedora-40", "a-1-2.src.rpm", EPackageUrlType::eRpm},
         "pkg:rpm/fedora/GraphicsMagick@1.3%2Bx-4.fc40?arch=x86_64&distro=fedora-40&epoch=2&upstream=a-1-2.src.rpm"},
        {{"fedora", "a", ":1", "", "", "", EPackageUrlType::eRpm}, "pkg:rpm/fedora/a@:1"},
        {{"alpine", "Busybox", "1.36.1-r15", "x86_64", "alpine-3.19.1", "", EPackageUrlType::eApk},
         "pkg:apk/alpine/busybox@1.36.1-r15?arch=x86_64&distro=alpine-3.19.1"},
        {{"arch", "containers-common", "1:0.47.4-4", "any", "", "", EPackageUrlType::eAlpm},
         "pkg:alpm/arch/containers-common@1:0.47.4-4?arch=any"},
        {{"", "Example_Tool", "1.4", "", "", "", EPackageUrlType::ePypi}, "pkg:pypi/example-tool@1.4"},
        {{"", "@Scope/core_js", "0.2.0", "", "", "", EPackageUrlType::eNpm}, "pkg:npm/%40scope/core_js@0.2.0"},
        {{"", "@", "", "", "", "", EPackageUrlType::eNpm}, "pkg:npm/%40"},
        {{"", "bash", "1"}, ""},
        {{"debian", "", "1"}, ""},
    };
    for (const auto& each : cases) EXPECT_EQ(PackageUrlOf(each.package), each.url);
}
