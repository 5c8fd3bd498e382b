#include "validator/component/runs.h"

#include <sstream>
#include <utility>

#include "fake_host/text.h"

namespace validator {

MediaSpec clip(const std::string& fileName) {
    return video(fileName, 1000000000)
        .scenes({{0, 400000000}, {400000000, 410000000}, {410000000, 1000000000}})
        .keyFrames({100000000, 405000000, 600000000});
}

MediaSpec shownPhoto(const std::string& fileName, std::int64_t ticks) {
    MediaSpec spec = photo(fileName).mediaLength(ticks);
    spec.durationTicks = ticks;
    return spec;
}

void useKindsQuietly(Stage& stage, const std::vector<std::int32_t>& kinds) {
    stage.useKinds(kinds);
    stage.journal();
}

Lines startsSinceLastLook(Stage& stage) {
    Lines started;
    std::string source;
    for (const std::string& line : stage.journal()) {
        const std::string mark = ".setSource(";
        const std::size_t at = line.find(mark);
        if (at != std::string::npos) {
            const std::size_t name = at + mark.size();
            source = line.substr(name, line.find(',', name) - name);
        }
        const std::size_t start = line.find(".start");
        if (start != std::string::npos) started.push_back(line.substr(0, start) + " " + source);
    }
    return started;
}

Lines journalOfRun(Stage& stage) {
    Lines lines;
    bool asked = false;
    for (const std::string& line : stage.journal()) {
        if (line.ends_with(".start")) asked = false;
        const bool isQuestion = line.find(".getResultList(9, ") != std::string::npos;
        if (!isQuestion || !std::exchange(asked, true)) lines.push_back(line);
    }
    return lines;
}

Lines linesOf(const std::string& text) {
    std::istringstream stream(text.substr(1));
    Lines lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

void runWithProgress(Stage& stage) {
    stage.component().start();
    while (FakeTask* const running = host().runningTask()) {
        running->progress(50);
        running->finish();
    }
}

Lines recordLines(Stage& stage) {
    Lines lines;
    for (const KOR::MaterialAnalysisResult& record : stage.results()) {
        const KOR::KorRect& rect = record.faceRectOfPhoto;
        std::string line = record.media->getFileName();
        line += " [" + joined(std::vector{record.begin, record.end}) + ")";
        line += " at " + std::to_string(record.posOfMaxScore) + ": " + asText(record.score);
        line += " {" + asText(rect.x) + ", " + asText(rect.y) + ", " + asText(rect.width);
        lines.push_back(line + ", " + asText(rect.height) + "}");
    }
    return lines;
}

FakeTask& theRunningTask() {
    FakeTask* const running = host().runningTask();
    expectObject("a task that runs", running);
    return *running;
}

void onceInside(RecordingListener& listener, std::function<void()> action) {
    listener.onEvent = [&listener, action = std::move(action)](std::uint32_t) {
        // What is called ends here, so that it has to be kept on the stack.
        const std::function<void()> kept = action;
        listener.onEvent = nullptr;
        kept();
    };
}

void insideProgress(RecordingListener& listener, std::function<void()> action) {
    onceInside(listener, std::move(action));
    theRunningTask().progress(50);
}

void expectNothingLeft(Stage& stage) {
    stage.end();
    expectEqual("tasks that are left", host().live.tasks.load(), 0);
    expectEqual("materials that are left", host().live.media.load(), 0);
    expectEqual("lists that are left", host().live.lists.load(), 0);
    expectEqual("log streams that are left", host().live.logStreams.load(), 0);
}

}  // namespace validator
