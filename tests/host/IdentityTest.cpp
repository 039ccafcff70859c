#include "KyrRun.h"

TEST(IdentityTest, PrintsWhatTheServerIs) {
    const char* const told =
        "System name             db01.example.net\n"
        "Product                 ES Rack 2200 -[4185C2X]-\n"
        "Machine type and model  4185C2X\n"
        "Machine type            4185\n"
        "Model                   C2X\n"
        "Serial number           KQ12345\n"
        "Operating system        Debian GNU/Linux\n"
        "Version                 12\n"
        "Data source version     1.0.0\n";
    EXPECT_THAT(RunKyrOn("server", "identity"), FieldsAre(0, told, _));
}

TEST(IdentityTest, WhatCannotBeToldHasItsReason) {
    const char* const told =
        "System name             builder\n"
        "Product                 not available (not present: /sys/class/dmi/id/product_name)\n"
        "Machine type and model  not available (not present: /sys/class/dmi/id/product_name)\n"
        "Machine type            not available (not present: /sys/class/dmi/id/product_name)\n"
        "Model                   not available (not present: /sys/class/dmi/id/product_name)\n"
        "Serial number           not available (not present: /sys/class/dmi/id/product_serial)\n"
        "Operating system        Ubuntu\n"
        "Version                 24.04\n"
        "Data source version     1.0.0\n";
    EXPECT_THAT(RunKyrOn("virtual", "identity"), FieldsAre(0, told, _));
}

TEST(IdentityTest, NothingAtAllIsNoResult) {
    const TempFolder root;
    const TRunResult run = RunKyr("identity --plugins " + root.Path());
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(CountIn(run.out, "not available"), 9u);
}
