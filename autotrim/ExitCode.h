#pragma once

namespace autotrim {

constexpr int exitAllDone = 0;
/// Some file failed, or a result could not be written; what could be done is done.
constexpr int exitSomeFailed = 1;
/// The command line cannot be used, or the face model that it names; nothing was done.
constexpr int exitWrongUse = 2;
/// As shells report a program that SIGINT ended.
constexpr int exitInterrupted = 130;

}  // namespace autotrim
