// The usage text of a program invoked as "GC_Web".
#pragma once

constexpr const char* cUsage =
    "Usage: GC_Web\n"
    "-s server ip       Specify server IP address.\n"
    "-t                 Output GC status only.\n"
    "-g                 Output GC config only.\n"
    "-a                 Output Alarm status.\n"
    "-P                 Reset all anyapp alarms.\n"
    "-V NUM             Switch VICI to Stream NUM.\n"
    "-R {auto/single/calib} [-v NUM] \n"
    "   auto            Start automation runs.\n"
    "   single          Start a single run.\n"
    "   calib           Start a calibration run (level 1).\n"
    "   -v NUM          Only meaningful for a single/calibraion run.\n"
    "                   Indicate the stream position shown in report.\n"
    "-A {now/auto}      Abort the current single run/sequence.\n"
    "-M NUM             Load the Solution from slot NUM.\n"
    "-q                 Output current GC sequence table.\n"
    "-Q file            Read the sequence table from file, and\n"
    "                   download it to micro GC.\n"
    "-c                 Output current GC calibration results.\n"
    "-C file            Read the calibration level amounts from file,\n"
    "                   and download it to micro GC.\n"
    "\n"
    "-h                 Show this help\n";
