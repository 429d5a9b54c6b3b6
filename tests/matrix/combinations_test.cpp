// The library, velmod and the naming service, each on either object request broker, as
// processes of their own.
//
// This build has one of the brokers. VELMO_OTHER_BUILD names the build folder of the other
// one; without it, what needs that is skipped, and so is what needs a naming service that
// is not installed.

#include <gtest/gtest.h>

#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <optional>
#include <tuple>

#include "tests/matrix/dialogue.h"
#include "tests/matrix/tao_names.h"
#include "tests/support/loopback.h"
#include "tests/support/omni_names.h"
#include "tests/support/settings_file.h"
#include "tests/support/velmod.h"

using namespace velmo::tests;

namespace {

enum class Naming { own, omni_names, tao_cosnaming };

// Where a build keeps what the matrix runs.
class Build {
public:
    explicit Build(std::filesystem::path build_folder) : folder(std::move(build_folder)) {}

    static Build of(const std::string& broker)
    {
        return Build(broker == THIS_BROKER ? THIS_BUILD : VELMO_OTHER_BUILD);
    }

    std::string client() const { return folder / "tests/matrix/matrix_client"; }
    std::string velmod() const { return folder / VELMOD_IN_BUILD; }

    // The broker that it is for; "" when it is no build.
    std::string broker() const
    {
        std::string name;
        std::ifstream(folder / "tests/matrix/broker") >> name;
        return name;
    }

private:
    std::filesystem::path folder;
};

std::string missing_build(const std::string& broker)
{
    if (Build::of(broker).broker() == broker)
        return "";
    return "there is no build on " + broker + " in VELMO_OTHER_BUILD=" VELMO_OTHER_BUILD;
}

std::string missing_naming(Naming naming)
{
    if (naming == Naming::omni_names && !OmniNames::available())
        return "omniNames is not installed";
    if (naming == Naming::tao_cosnaming && !TaoNames::available())
        return "there is no tao_cosnaming";
    return "";
}

// The client, and the lines that let it go on.
class Client {
public:
    Client(const std::string& program, const std::string& suite)
        : process({program, "--gtest_filter=" + suite + ".*", "--gtest_brief=0"}, {},
                  streams())
    {
        check_system_call(signal(SIGPIPE, SIG_IGN) != SIG_ERR, "signal");
    }

    // Waits until it has said that for the nth time.
    bool says(const std::string& line, std::size_t times = 1)
    {
        return eventually([&] { return !process.running() || said(line) >= times; }) &&
               said(line) >= times;
    }

    void go_on() { check_system_call(write(to_client.get(), "\n", 1) == 1, "write"); }

    void expect_success()
    {
        EXPECT_EQ(process.wait(), 0) << process.out() << process.err();
    }
    std::string out() const { return process.out(); }

private:
    Process::Streams streams()
    {
        int ends[2];
        check_system_call(pipe(ends) == 0, "pipe");
        from_test = Descriptor(ends[0]);
        to_client = Descriptor(ends[1]);
        Process::Streams streams;
        streams.in = from_test.get();
        return streams;
    }

    std::size_t said(const std::string& line) const
    {
        const std::string text = process.out();
        std::size_t count = 0;
        for (std::size_t at = text.find(line); at != std::string::npos;
             at = text.find(line, at + 1))
            ++count;
        return count;
    }

    Descriptor from_test;
    Descriptor to_client;
    Process process;
};

using Brokers = std::tuple<std::string, std::string, Naming>; // of library and server

class Matrix : public ::testing::TestWithParam<Brokers> {
protected:
    void SetUp() override
    {
        const auto& [library, server, naming] = GetParam();
        for (const std::string& missing :
             {missing_build(library), missing_build(server), missing_naming(naming)})
            if (!missing.empty())
                GTEST_SKIP() << missing;

        std::vector<std::string> arguments{
            "--server", "S", "--realm", "Süd/水", "--data-dir", folder.path() / "data"};
        if (naming == Naming::omni_names)
            url = omni_names.emplace().naming_url();
        else if (naming == Naming::tao_cosnaming)
            url = tao_names.emplace().naming_url();
        if (!url.empty())
            arguments.insert(arguments.end(), {"--naming", url});
        velmod.emplace(arguments, Process::Environment(), Build::of(server).velmod());
        if (url.empty())
            url = velmod->naming_url();
        settings.emplace("local=\"S\"", Servers{{"S", url}});
    }

    void set_timeouts(const std::string& attributes)
    {
        settings->write("local=\"S\" " + attributes, Servers{{"S", url}});
    }

    Client client(const std::string& suite)
    {
        return Client(Build::of(std::get<0>(GetParam())).client(), suite);
    }

    std::optional<Velmod> velmod;

private:
    using Servers = std::vector<SettingsFile::Server>;

    TemporaryFolder folder;
    std::optional<OmniNames> omni_names;
    std::optional<TaoNames> tao_names;
    std::optional<SettingsFile> settings;
    std::string url;
};

TEST_P(Matrix, EveryExport)
{
    client("Exports").expect_success();
}

TEST_P(Matrix, LargePackets)
{
    client("LargePackets").expect_success();
}

TEST_P(Matrix, KillAndRestart)
{
    Client user = client("Restart");
    ASSERT_TRUE(user.says(used_server)) << user.out();
    velmod->kill();
    user.go_on();
    ASSERT_TRUE(user.says(missed_server)) << user.out();
    velmod->restart();
    user.go_on();
    user.expect_success();
}

TEST_P(Matrix, Timeouts)
{
    set_timeouts("call_timeout_ms=\"500\" naming_timeout_ms=\"500\"");
    Client user = client("Timeouts");
    ASSERT_TRUE(user.says(used_server)) << user.out();
    velmod->process().suspend();
    user.go_on();
    ASSERT_TRUE(user.says(missed_server)) << user.out();
    velmod->process().signal(SIGCONT);
    user.go_on();
    user.expect_success();
}

std::string combination_name(const ::testing::TestParamInfo<Brokers>& brokers)
{
    const char* const namings[] = {"own_naming", "omniNames", "tao_cosnaming"};
    const auto& [library, server, naming] = brokers.param;
    return "library_on_" + library + "_velmod_on_" + server + "_" +
           namings[static_cast<int>(naming)];
}

INSTANTIATE_TEST_SUITE_P(Brokers, Matrix,
                         ::testing::Combine(::testing::Values("TAO", "omniORB"),
                                            ::testing::Values("TAO", "omniORB"),
                                            ::testing::Values(Naming::own,
                                                              Naming::omni_names,
                                                              Naming::tao_cosnaming)),
                         combination_name);

} // namespace
