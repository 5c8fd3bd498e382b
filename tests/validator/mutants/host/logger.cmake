# Faults of a log. The smallest host has none, and so is given one: sound, and with a fault.

set(sound_log [[    class Line : public KOR::LogStream {
    public:
        Line() = default;
        void write(const char* text, std::size_t length) override { text_.assign(text, length); }
        void close() override {
            std::fprintf(stderr, "%s", text_.c_str());
            delete this;
        }
        std::string text_;
    };
    class Log : public KOR::KorLoggerWrapper {
    public:
        bool testSeverity(KOR::IBsLogger::Severity severity) override { return severity >= 4; }
        KOR::LogStream* createLogStream(KOR::IBsLogger::Severity severity, const char*,
                                        std::int32_t, const char*, const char*) override {
            return testSeverity(severity) ? new Line : nullptr;
        }
    };
    static Log log;
    return &log;]])

# add_log_mutant(NAME REPLACE place-in-the-sound-log BY what CAUGHT_BY ids FAILED_BY ids)
function(add_log_mutant name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "REPLACE;BY" "CAUGHT_BY;FAILED_BY")
  string(FIND "${sound_log}" "${arg_REPLACE}" place)
  if(place EQUAL -1)
    message(FATAL_ERROR "mutant ${name}: not in the log:\n${arg_REPLACE}")
  endif()
  string(REPLACE "${arg_REPLACE}" "${arg_BY}" log "${sound_log}")
  add_host_mutant(${name} SOURCE services.cpp
    REPLACE [[    return nullptr;  // this host has no log]] BY "${log}"
    CAUGHT_BY ${arg_CAUGHT_BY} FAILED_BY ${arg_FAILED_BY})
  set(host_mutants "${host_mutants}" PARENT_SCOPE)
endfunction()

# What checks of a log pass.
add_host_mutant(no-fault-but-a-log
  SOURCE services.cpp
  REPLACE [[    return nullptr;  // this host has no log]]
  BY "${sound_log}")

add_log_mutant(no-fault-but-a-line-at-a-time
  REPLACE [[        Line() = default;]]
  BY [[        Line() { oneAtATime().lock(); }
        ~Line() { oneAtATime().unlock(); }
        static std::mutex& oneAtATime() {
            static std::mutex theMutex;
            return theMutex;
        }]])

add_log_mutant(log-made-anew
  REPLACE [[    static Log log;
    return &log;]]
  BY [[    return new Log;]]
  CAUGHT_BY logger.stays-the-same)

add_log_mutant(severity-by-turns
  REPLACE [[{ return severity >= 4; }]]
  BY [[{ static bool isWanted; return severity == 4 && (isWanted = !isWanted); }]]
  CAUGHT_BY logger.answers-severities)

add_log_mutant(fatal-has-no-letter
  REPLACE [[            return testSeverity(severity)]]
  BY [[            return std::string("_tdDiwe").at(severity) != '_' && testSeverity(severity)]]
  CAUGHT_BY logger.writes-lines)

add_log_mutant(lines-of-4096-bytes
  REPLACE [[{ text_.assign(text, length); }]]
  BY [[{ std::string(4096, ' ').at(length); text_.assign(text, length); }]]
  CAUGHT_BY logger.takes-any-text)

add_log_mutant(line-ends-with-its-last-byte
  REPLACE [[            std::fprintf(stderr,]]
  BY [[            if (text_.at(text_.size() - 1) != ' ') std::fprintf(stderr,]]
  CAUGHT_BY logger.closes-unwritten-lines logger.takes-any-text)

add_log_mutant(one-stream-for-all
  REPLACE [[            return testSeverity(severity) ? new Line : nullptr;]]
  BY [[            static class : public KOR::LogStream {
            public:
                void write(const char*, std::size_t) override {}
                void close() override {}
            } line;
            return testSeverity(severity) ? &line : nullptr;]]
  FAILED_BY logger.gives-threads-their-own-streams)

add_log_mutant(log-of-one-thread
  REPLACE [[            return testSeverity(severity)]]
  BY [[            static thread_local int own;
            static const int* const first = &own;
            if (&own != first) std::abort();
            return testSeverity(severity)]]
  CAUGHT_BY logger.writes-on-threads)
