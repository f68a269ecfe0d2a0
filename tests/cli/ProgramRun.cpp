#include "ProgramRun.h"
#include "TestPaths.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <memory>

namespace vmk {

namespace {

/// A file without a name, which is deleted when closed.
class ScratchFile
{
public:
    ScratchFile()
        : file(std::tmpfile(), &std::fclose)
    {
    }

    [[nodiscard]] int descriptor() const { return fileno(file.get()); }

    void fill(const std::string& text)
    {
        std::fwrite(text.data(), 1, text.size(), file.get());
        std::fflush(file.get());
        std::rewind(file.get());
        lseek(descriptor(), 0, SEEK_SET);
    }

    [[nodiscard]] std::string content()
    {
        std::string text;
        char piece[4096];
        std::rewind(file.get());
        while (const size_t length = std::fread(piece, 1, sizeof piece, file.get()))
            text.append(piece, length);
        return text;
    }

private:
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> file;
};

/// Does nothing for a negative limit.
void LimitResource(__rlimit_resource resource, long most)
{
    const auto limit = static_cast<rlim_t>(most);
    const rlimit both = {limit, limit};
    if (most >= 0)
        setrlimit(resource, &both);
}

} // namespace

ProgramRun RunProgram(const std::string& name, const std::vector<std::string>& arguments,
                      const ProgramSetting& setting)
{
    const std::string path = name.starts_with("/") ? name : std::string(VMK_BIN_DIR) + "/" + name;
    std::vector<char*> values = {const_cast<char*>(path.c_str())};
    for (const std::string& argument : arguments)
        values.push_back(const_cast<char*>(argument.c_str()));
    values.push_back(nullptr);
    ScratchFile input;
    ScratchFile output;
    ScratchFile errors;
    input.fill(setting.input);

    const pid_t child = fork();
    if (child == 0) {
        const bool isElsewhere = !setting.outputFile.empty();
        dup2(input.descriptor(), STDIN_FILENO);
        dup2(isElsewhere ? open(setting.outputFile.c_str(), O_WRONLY) : output.descriptor(), STDOUT_FILENO);
        dup2(errors.descriptor(), STDERR_FILENO);
        setenv("LC_ALL", setting.locale.c_str(), 1);
        if (!setting.dataFolder.empty())
            setenv("XDG_DATA_HOME", setting.dataFolder.c_str(), 1);
        LimitResource(RLIMIT_FSIZE, setting.largestFile);
        LimitResource(RLIMIT_AS, setting.mostMemory);
        LimitResource(RLIMIT_NPROC, setting.mostThreads);
        for (const int handle : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            if (setting.closedHandles)
                close(handle);
        if (!setting.workingFolder.empty() && chdir(setting.workingFolder.c_str()) != 0)
            _exit(125);
        const auto user = static_cast<uid_t>(setting.userId);
        if (setting.userId >= 0 && setuid(user) != 0)
            _exit(126);
        execv(path.c_str(), values.data());
        _exit(127);
    }
    int status = 0;
    rusage usage = {};
    wait4(child, &status, 0, &usage);

    ProgramRun run;
    const auto seconds = [](const timeval& time) { return double(time.tv_sec) + double(time.tv_usec) / 1e6; };
    run.seconds = seconds(usage.ru_utime) + seconds(usage.ru_stime);
    run.peakBytes = usage.ru_maxrss * 1024;
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    run.output = output.content();
    run.errors = errors.content();
    return run;
}

} // namespace vmk
