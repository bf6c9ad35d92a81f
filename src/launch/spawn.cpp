#include "launch/spawn.h"

#include "launch/command_line.h"
#include "launch/reachability.h"
#include "platform/log.h"
#include "platform/shell_command.h"
#include "platform/tmp_files.h"
#include "store/master_index.h"
#include "store/models.h"
#include "store/record.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <linux/close_range.h>
#include <memory>
#include <pthread.h>
#include <sys/wait.h>
#include <unistd.h>
#include <unordered_map>
#include <utility>

namespace {

// Matches no connection type: a connection whose server did not answer starts nothing.
constexpr const char* unreachable_type = "XXX";

// The process id as kept in the tree: five digits, the last five of a longer id.
constexpr int pid_modulus = 100000;

// The tree keeps only five digits of a process id, but systems that hand out larger
// ids exist; the full id of each running session child is kept here by its five
// digits, so that the status poll waits for the right process.
std::unordered_map<int, pid_t>& session_children()
{
    static std::unordered_map<int, pid_t> children;
    return children;
}

void mark_active(GtkTreeModel* model, GtkTreeIter* iter, pid_t pid)
{
    session_children()[pid % pid_modulus] = pid;
    char pid_text[8];
    std::snprintf(pid_text, sizeof pid_text, "%05d", static_cast<int>(pid % pid_modulus));
    gtk_tree_store_set(GTK_TREE_STORE(model), iter, TC_PID, pid_text, TC_STATUS, status_active,
                       TC_POLLS, 0, -1);
}

constexpr int termination_signals[] = {SIGTERM, SIGHUP, SIGQUIT, SIGINT};

// The parent's handlers for the termination signals write to the pipe its main loop
// reads, which the child shares: run in the child, they would end the parent. They stay
// blocked from just before fork until the child has put the default actions back.
sigset_t block_termination_signals()
{
    sigset_t blocked;
    sigset_t previous;
    sigemptyset(&blocked);
    for (int signal_number : termination_signals)
        sigaddset(&blocked, signal_number);
    pthread_sigmask(SIG_BLOCK, &blocked, &previous);
    return previous;
}

void restore_signal_mask(const sigset_t& previous)
{
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);
}

// The child has no main loop: a termination signal takes its default action again, and
// the session program starts with the signal mask the program had before the fork.
void restore_default_signals(const sigset_t& previous)
{
    for (int signal_number : termination_signals)
        std::signal(signal_number, SIG_DFL);
    restore_signal_mask(previous);
}

// What a spawned program inherits: standard input from /dev/null, standard output and
// error as they are, and no other descriptor. False when /dev/null cannot be opened.
bool hand_over_descriptors()
{
    const int null_input = open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (null_input < 0)
        return false;
    if (null_input != STDIN_FILENO) {
        dup2(null_input, STDIN_FILENO);
        close(null_input);
    }
    if (close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC) == 0)
        return true;
    // Kernels before 5.11 know no close_range flags: mark them one by one.
    const long last = std::min(sysconf(_SC_OPEN_MAX), 65536L);
    for (int fd = STDERR_FILENO + 1; fd < last; ++fd)
        fcntl(fd, F_SETFD, FD_CLOEXEC);
    return true;
}

// Runs a command line with shell quoting but no shell, waiting until it ends, as
// g_spawn_command_line_sync does: split by the shell's rules, the program searched for
// in PATH (a script without "#!" is run by /bin/sh), standard input from /dev/null and no
// descriptor but 0, 1 and 2 passed on. This child is already a copy of the program, so
// the session program is started with vfork, which shares its memory rather than
// copying it again.
void run_and_wait(const std::string& command_line)
{
    gchar** argv = nullptr;
    if (!g_shell_parse_argv(command_line.c_str(), nullptr, &argv, nullptr))
        return;
    std::unique_ptr<gchar*, decltype(&g_strfreev)> owner(argv, g_strfreev);
    if (!hand_over_descriptors())
        return;
    const pid_t pid = vfork();
    if (pid == 0) {
        execvp(argv[0], argv);
        _exit(exit_session_over);
    }
    if (pid > 0)
        while (waitpid(pid, nullptr, 0) < 0 && errno == EINTR) {
        }
}

// Replaces the child with the program named by arguments[0], searched for in PATH.
// Returns only when that fails.
void exec_searched(argument_vector arguments)
{
    std::vector<char*> argv;
    for (std::string& argument : arguments)
        argv.push_back(argument.data());
    argv.push_back(nullptr);
    execvp(argv[0], argv.data());
}

void exec_xdm(const connection_record& record)
{
    std::string keymap_command;
    argument_vector arguments = xdm_arguments(record, &keymap_command);
    // Its result is not checked: X reports a missing map itself. The compiled map's
    // name in /tmp is made afresh first, so that xkbcomp never writes through a planted
    // link; when it cannot be, the map is not compiled.
    if (!keymap_command.empty()) {
        const int fresh = create_fresh_file(compiled_keymap_file());
        if (fresh >= 0) {
            close(fresh);
            run_shell_command(keymap_command);
        }
    }
    exec_searched(std::move(arguments));
}

// The DAS client is given an empty argument vector, not even its own name: it has
// always been started that way and is kept so.
void exec_das()
{
    char* no_arguments[] = {nullptr};
    execv(das_program().c_str(), no_arguments);
}

// Starts the session; returns when it could not be started or, for the types that
// wait for it, when it has ended.
void run_session(const connection_record& record, const std::string& type)
{
    switch (parse_connection_type(type)) {
    case connection_type::rdp:
        run_and_wait(rdp_command_line(rdp_arguments(record)));
        break;
    case connection_type::ica:
        exec_searched(ica_arguments(record));
        break;
    case connection_type::xdm:
        exec_xdm(record);
        break;
    case connection_type::web:
        exec_searched(web_arguments(record));
        break;
    case connection_type::das:
        exec_das();
        break;
    case connection_type::other:
        run_and_wait(other_command_line(record));
        break;
    case connection_type::unknown:
        break;
    }
}

// The child's work; returns its exit status unless the session program replaced it.
int run_child(GtkTreeModel* model, GtkTreeIter* iter)
{
    const std::string name = model_text(model, iter, TC_NAME);
    std::string type = model_text(model, iter, TC_TYPE);
    GtkTreeIter master;
    if (!master_connection_list || !find_master_row(master_connection_list, name, type, &master))
        return exit_connection_gone;
    const connection_record record =
        read_master_row(GTK_TREE_MODEL(master_connection_list), &master);
    const int result = run_reachability_check(plan_reachability(record));
    if (result != 0) {
        log_printf("Ping exit code %x\n", static_cast<unsigned>(result));
        type = unreachable_type;
    }
    run_session(record, type);
    return exit_session_over;
}

}  // namespace

int spawn_connection(GtkTreeModel* model, GtkTreeIter* iter)
{
    if (model_text(model, iter, TC_STATUS) == status_active)
        return 0;
    // Output still buffered in our streams would otherwise be written by the child too.
    std::fflush(nullptr);
    // The child's lines go to the log this process holds, and a storm of restarts may
    // be all that writes to it.
    log_keep_bounded();
    // The child finds its connection through the master list's index: bring it up to
    // date once here rather than in every child.
    if (master_connection_list)
        prepare_master_index(master_connection_list);
    const sigset_t previous_mask = block_termination_signals();
    const pid_t pid = fork();
    if (pid == 0) {
        // No toolkit work in the child beyond reading the models, and no way back into
        // the program: it ends here or becomes the session program.
        restore_default_signals(previous_mask);
        _exit(run_child(model, iter));
    }
    restore_signal_mask(previous_mask);
    if (pid < 0) {
        std::perror("Process fork failed.\n");
        return -1;
    }
    mark_active(model, iter, pid);
    return waitpid(pid, nullptr, WNOHANG) == 0 ? -1 : 0;
}

pid_t session_process_id(int pid_digits)
{
    auto child = session_children().find(pid_digits);
    return child == session_children().end() ? pid_digits : child->second;
}

void forget_session(pid_t pid)
{
    auto child = session_children().find(pid % pid_modulus);
    if (child != session_children().end() && child->second == pid)
        session_children().erase(child);
}
