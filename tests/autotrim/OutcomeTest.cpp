#include <gtest/gtest.h>

#include "autotrim/Outcome.h"

namespace autotrim {
namespace {

constexpr std::int32_t minLengthSeconds = 2;
constexpr std::int64_t justShort = 20000000;

FileReport video(std::int64_t duration) {
    FileReport report;
    report.type = MaterialType::video;
    report.duration = duration;
    return report;
}

FileReport photo() {
    FileReport report;
    report.type = MaterialType::photo;
    report.duration = 1;
    return report;
}

FileReport decided(FileReport report, const Traces& traces, RunEnd end) {
    if (traces.hasRecords) report.results.resize(1);
    decideOutcome(report, traces, end, minLengthSeconds);
    return report;
}

Traces withRecords() {
    Traces traces;
    traces.hasRecords = true;
    traces.passed = true;
    return traces;
}

TEST(Outcome, IsAnalysedWhereATaskRan) {
    Traces traces = withRecords();
    traces.analysed = true;
    const FileReport report = decided(video(justShort + 1), traces, RunEnd::complete);
    EXPECT_EQ(report.outcome, Outcome::analysed);
    EXPECT_EQ(report.error, "");
    EXPECT_EQ(report.results.size(), 1U);
}

TEST(Outcome, IsRestoredForALongVideoWithoutATask) {
    EXPECT_EQ(decided(video(justShort + 1), withRecords(), RunEnd::complete).outcome,
              Outcome::restored);
}

TEST(Outcome, IsRestoredFromACacheWithoutRecords) {
    Traces traces;
    traces.passed = true;
    const FileReport report = decided(video(justShort + 1), traces, RunEnd::complete);
    EXPECT_EQ(report.outcome, Outcome::restored);
    EXPECT_EQ(report.error, "");
}

TEST(Outcome, IsDefaultForAVideoNotLongerThanTheLimit) {
    EXPECT_EQ(decided(video(justShort), withRecords(), RunEnd::complete).outcome,
              Outcome::byDefault);
}

TEST(Outcome, IsDefaultForAPhoto) {
    EXPECT_EQ(decided(photo(), withRecords(), RunEnd::complete).outcome, Outcome::byDefault);
}

TEST(Outcome, IsAnalysedForAPhotoWithItsFaces) {
    Traces traces;
    traces.analysed = true;
    traces.hasRecords = true;
    for (const RunEnd end : {RunEnd::complete, RunEnd::interrupted, RunEnd::stalled}) {
        const FileReport report = decided(photo(), traces, end);
        EXPECT_EQ(report.outcome, Outcome::analysed);
        EXPECT_EQ(report.error, "");
        EXPECT_EQ(report.results.size(), 1U);
    }
}

TEST(Outcome, IsFailedForAPhotoThatAwaitsFaces) {
    Traces traces;
    traces.hasRecords = true;
    traces.awaitsFaces = true;
    for (const bool begun : {false, true}) {
        traces.analysed = begun;
        const FileReport report = decided(photo(), traces, RunEnd::interrupted);
        EXPECT_EQ(report.outcome, Outcome::failed);
        EXPECT_EQ(report.error, "interrupted");
        EXPECT_TRUE(report.results.empty());
    }
}

TEST(Outcome, IsAnalysedForAPassedPhotoWithoutFaces) {
    Traces traces = withRecords();
    traces.analysed = true;
    traces.awaitsFaces = true;
    EXPECT_EQ(decided(photo(), traces, RunEnd::complete).outcome, Outcome::analysed);
}

TEST(Outcome, KeepsTheLimitApartFromOverflow) {
    FileReport report = video(justShort + 1);
    report.results.resize(1);
    decideOutcome(report, withRecords(), RunEnd::complete, 2147483647);
    EXPECT_EQ(report.outcome, Outcome::byDefault);
}

TEST(Outcome, IsFailedWithTheTasksReason) {
    Traces traces = withRecords();
    traces.analysed = true;
    traces.failure = "no picture could be decoded";
    const FileReport report = decided(video(justShort + 1), traces, RunEnd::complete);
    EXPECT_EQ(report.outcome, Outcome::failed);
    EXPECT_EQ(report.error, "no picture could be decoded");
    EXPECT_TRUE(report.results.empty());
}

TEST(Outcome, IsFailedWhenInterruptedBeforeTheEnd) {
    Traces traces;
    traces.analysed = true;
    const FileReport report = decided(video(justShort + 1), traces, RunEnd::interrupted);
    EXPECT_EQ(report.outcome, Outcome::failed);
    EXPECT_EQ(report.error, "interrupted");
}

TEST(Outcome, IsFailedWhenTheRunStalled) {
    const FileReport report = decided(video(justShort + 1), {}, RunEnd::stalled);
    EXPECT_EQ(report.outcome, Outcome::failed);
    EXPECT_EQ(report.error, "the analysis stopped before its end");
}

TEST(Outcome, KeepsWhatWasDoneBeforeAnInterrupt) {
    Traces traces = withRecords();
    traces.analysed = true;
    EXPECT_EQ(decided(video(justShort + 1), traces, RunEnd::interrupted).outcome,
              Outcome::analysed);
    traces.hasRecords = false;
    EXPECT_EQ(decided(video(justShort + 1), traces, RunEnd::interrupted).outcome,
              Outcome::analysed);
}

}  // namespace
}  // namespace autotrim
