# Faults in the lines of the log.

add_component_mutant(logs-of-higher-severity
  SOURCE LogLine.cpp
  REPLACE [[createLogStream(IBsLogger::info,]]
  BY [[createLogStream(IBsLogger::warning,]]
  CAUGHT_BY logs.severity-is-4)

add_component_mutant(logs-of-other-severity-tested
  SOURCE LogLine.cpp
  REPLACE [[testSeverity(IBsLogger::info)]]
  BY [[testSeverity(IBsLogger::debug)]]
  CAUGHT_BY logs.severity-4-is-tested)

add_component_mutant(logs-no-finish-without-task
  SOURCE PictureIntake.cpp
  REPLACE [[    const Status status = faceDetectFinishedInternal(task);]]
  BY [[    const Status status = faceDetectFinishedInternal(task);
    if (status != statusOk) return status;]]
  CAUGHT_BY logs.finishes-without-task)

add_component_mutant(logs-of-file
  SOURCE LogLine.cpp
  REPLACE [[MaterialAnalysis/KorMaterialAnalysis"]]
  BY [[MaterialAnalysis/KorMaterialAnalysis.cpp"]]
  CAUGHT_BY logs.source-unit)

add_component_mutant(logs-tagged
  SOURCE LogLine.cpp
  REPLACE [[source.function, "");]]
  BY [[source.function, "MaterialAnalysis");]]
  CAUGHT_BY logs.tag-is-empty)

add_component_mutant(logs-without-line-number
  SOURCE LogLine.cpp
  REPLACE [[source.line,]]
  BY [[0,]]
  CAUGHT_BY logs.line-number-is-given)

add_component_mutant(logs-of-wrong-function
  SOURCE ResultIntake.cpp
  REPLACE [[function = "KOR::KorMaterialAnalysis::scenceAndKeyframeDetectFinished"]]
  BY [[function = "KOR::KorMaterialAnalysis::logScencesWithKeyFrames"]]
  CAUGHT_BY logs.functions-are-qualified)

add_component_mutant(logs-in-two-pieces
  SOURCE LogLine.cpp
  REPLACE [[    stream_->write(text.data(), text.size());]]
  BY [[    stream_->write(text.data(), text.size() / 2);
    stream_->write(text.data() + text.size() / 2, text.size() - text.size() / 2);]]
  CAUGHT_BY logs.written-in-one-piece)

add_component_mutant(logs-spelled-better
  SOURCE TaskLaunch.cpp
  REPLACE [[extrackt]]
  BY [[extract]]
  CAUGHT_BY logs.starts-of-all-kinds)

add_component_mutant(logs-capital-letter
  SOURCE PictureIntake.cpp
  REPLACE [[Finish face Detect]]
  BY [[Finish Face Detect]]
  CAUGHT_BY logs.finishes-of-all-kinds logs.photo-has-no-entropy-line)

add_component_mutant(logs-index-from-1
  SOURCE TaskLaunch.cpp
  REPLACE [[mark.materialIndex()]]
  BY [[mark.materialIndex() + 1]]
  CAUGHT_BY logs.index-is-that-of-material logs.starts-of-all-kinds)

add_component_mutant(logs-blank-between-positions
  SOURCE ResultIntake.cpp
  REPLACE [[positions += ",";]]
  BY [[positions += ", ";]]
  CAUGHT_BY logs.scenes-with-keyframes)

add_component_mutant(logs-score-spelled-right
  SOURCE AutoTrim.cpp
  REPLACE [[" socre: "]]
  BY [[" score: "]]
  CAUGHT_BY logs.end-of-run)

add_component_mutant(logs-all-digits
  SOURCE LogLine.cpp
  REPLACE [[text_.emplace().imbue(std::locale::classic());]]
  BY [[{
        text_.emplace().imbue(std::locale::classic());
        text_->precision(17);
    }]]
  CAUGHT_BY logs.end-of-run)

add_component_mutant(logs-end-only-with-records
  SOURCE AutoTrim.cpp
  REPLACE [[    logLine(function, "auto trim result: \n");]]
  BY [[    if (!analysisResults.empty()) logLine(function, "auto trim result: \n");]]
  CAUGHT_BY logs.end-of-empty-run)

add_component_mutant(logs-file-name-shortened
  SOURCE AutoTrim.cpp
  REPLACE [[result->media->getFileName()]]
  BY [[std::string(result->media->getFileName()).substr(0, 12)]]
  CAUGHT_BY logs.file-names-stay-as-they-are)

add_component_mutant(logs-need-a-logger
  SOURCE LogLine.cpp
  REPLACE [[logger == nullptr || ]]
  BY [[]]
  CAUGHT_BY logs.absent-logger-changes-nothing restore.deletes-without-logger)

add_component_mutant(logs-of-any-severity
  SOURCE LogLine.cpp
  REPLACE [[ || !logger->testSeverity(IBsLogger::info)]]
  BY [[]]
  CAUGHT_BY logs.disabled-severity-changes-nothing)

add_component_mutant(logs-need-a-stream
  SOURCE LogLine.cpp
  REPLACE [[if (stream_ != nullptr) stream_->close();]]
  BY [[stream_->close();]]
  CAUGHT_BY logs.refused-lines-change-nothing logs.absent-logger-changes-nothing
    logs.disabled-severity-changes-nothing)

add_component_mutant(logs-in-the-hosts-locale
  SOURCE LogLine.cpp
  REPLACE [[text_.emplace().imbue(std::locale::classic())]]
  BY [[text_.emplace()]]
  CAUGHT_BY logs.locale-does-not-matter)

add_component_mutant(logs-nothing
  SOURCE LogLine.cpp
  REPLACE [[    if (logger == nullptr || !logger->testSeverity(IBsLogger::info)) return;]]
  BY [[    if (logger == nullptr || loggerWrapper(0) == logger) return;]]
  FAILED_BY logs.end-of-run logs.file-names-stay-as-they-are logs.locale-does-not-matter)
