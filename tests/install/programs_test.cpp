// Programs of other projects, built with an installed copy and run beside its server.
#include <gtest/gtest.h>

#include <tuple>

#include "tests/install/installation.h"
#include "tests/support/settings_file.h"
#include "tests/support/velmod.h"

using namespace velmo::tests;

namespace {

namespace fs = std::filesystem;

const std::string german_empty_queue =
    "Die Warteschlange ist leer: Es liegt kein Paket vor.\n";
const std::string german_ok = "Die Operation war erfolgreich.\n";

struct Compiler {
    std::string name;
    std::string c; // its path, "" where it is not installed
    std::string cpp;
};

class Programs : public ::testing::TestWithParam<Compiler> {
protected:
    static void SetUpTestSuite() { installed = std::make_unique<Installation>(); }
    static void TearDownTestSuite() { installed.reset(); }

    void SetUp() override
    {
        if (GetParam().c.empty() || GetParam().cpp.empty())
            GTEST_SKIP() << GetParam().name << " is not installed";
    }

    std::string output(const std::string& program) { return folder.path() / program; }

    // Against the velmod of the installation at root.
    void run(const std::string& program, const fs::path& root, const std::string& expected)
    {
        Velmod velmod({}, {}, root / BINDIR / "velmod");
        SettingsFile settings("local=\"S\"", {{"S", velmod.naming_url()}});
        EXPECT_EQ(
            output_of({output(program)},
                      {{"VELMO_LANG", "de"}, {"LC_ALL", "C"}, {"LD_LIBRARY_PATH", ""}}),
            expected);
    }

    // As its own project does it: the compiler, and what pkg-config says.
    void compile(const std::string& compiler, const std::string& source,
                 const std::string& package, const std::string& standard)
    {
        output_of({"/bin/sh", "-ec",
                   "flags=$(pkg-config --cflags --libs \"$4\")\n"
                   "\"$1\" \"$5\" \"$2\" -o \"$3\" $flags "
                   "-Wl,-rpath,\"$(pkg-config --variable=libdir \"$4\")\"",
                   "sh", compiler, OUTSIDE "/" + source, output("program"), package,
                   standard},
                  {{"PKG_CONFIG_PATH", installed->path(LIBDIR "/pkgconfig")}});
    }

    static std::unique_ptr<Installation> installed;

private:
    TemporaryFolder folder;
};

std::unique_ptr<Installation> Programs::installed;

TEST_P(Programs, InCBuiltThroughPkgConfig)
{
    compile(GetParam().c, "program.c", "velmo", "-std=c11");
    run("program", installed->root(), "hello level\n" + german_empty_queue);
}

TEST_P(Programs, InCppOnTheLayerBuiltThroughPkgConfig)
{
    compile(GetParam().cpp, "layer.cpp", "velmo", "-std=c++17");
    run("program", installed->root(), "hello\n");
}

TEST_P(Programs, InCppOnTheClassesBuiltThroughPkgConfig)
{
    Process broker({"/bin/sh", "-c", "pkg-config --exists " BROKER_PACKAGES});
    if (broker.wait() != 0)
        GTEST_SKIP() << "pkg-config does not know " BROKER_PACKAGES;
    compile(GetParam().cpp, "program.cpp", "velmo-cpp", "-std=c++17");
    run("program", installed->root(), german_ok);
}

// A copy elsewhere: neither the package nor the programs depend on the prefix.
TEST_P(Programs, BuiltThroughCMakeFromAMovedInstallation)
{
    const TemporaryFolder elsewhere;
    const fs::path moved = elsewhere.path() / "moved";
    fs::copy(installed->root(), moved,
             fs::copy_options::recursive | fs::copy_options::copy_symlinks);
    output_of({CMAKE, "-S", OUTSIDE, "-B", output("build"), "-G", "Ninja",
               "-DWANTED=api;cpp", "-DCMAKE_PREFIX_PATH=" + moved.string(),
               "-DCMAKE_C_COMPILER=" + GetParam().c,
               "-DCMAKE_CXX_COMPILER=" + GetParam().cpp, "-DACE_ROOT=" ACE_ROOT_FOLDER});
    output_of({CMAKE, "--build", output("build")});
    run("build/program_c", moved, "hello level\n" + german_empty_queue);
    run("build/layer", moved, "hello\n");
    run("build/program_cpp", moved, german_ok);
}

INSTANTIATE_TEST_SUITE_P(Compilers, Programs,
                         ::testing::Values(Compiler{"gcc", GCC, GXX},
                                           Compiler{"clang", CLANG, CLANGXX}),
                         [](const auto& compiler) { return compiler.param.name; });

// Where what C++ programs need of the broker is missing.
class WithoutBroker : public Programs {
protected:
    void configure(const std::string& wanted)
    {
        output_of({CMAKE, "-S", OUTSIDE, "-B", output("build"), "-G", "Ninja",
                   "-DWANTED=" + wanted,
                   "-DCMAKE_PREFIX_PATH=" + installed->root().string(),
                   "-DCMAKE_C_COMPILER=" + GetParam().c,
                   "-DCMAKE_CXX_COMPILER=" + GetParam().cpp},
                  {{"PKG_CONFIG_LIBDIR", "/nowhere"}, {"ACE_ROOT", ""}, {"TAO_ROOT", ""}});
    }
};

TEST_P(WithoutBroker, ProgramsOnTheCInterfaceAreBuilt)
{
    configure("api");
    output_of({CMAKE, "--build", output("build")});
    run("build/program_c", installed->root(), "hello level\n" + german_empty_queue);
    run("build/layer", installed->root(), "hello\n");
}

TEST_P(WithoutBroker, CMakeTellsThatItIsMissing)
{
    try {
        configure("cpp");
        FAIL() << "it was not missed";
    } catch (const std::runtime_error& error) {
        EXPECT_NE(std::string(error.what()).find("Velmo::cpp needs"), std::string::npos)
            << error.what();
    }
}

INSTANTIATE_TEST_SUITE_P(Compilers, WithoutBroker,
                         ::testing::Values(Compiler{"gcc", GCC, GXX}),
                         [](const auto& compiler) { return compiler.param.name; });

} // namespace
