#!/usr/bin/env bash
# Installs, when missing, what building and testing need on a fresh Debian
# machine: the MinGW-w64 cross compiler, Wine with its IDL compiler, Xvfb,
# ImageMagick, Liberation Sans (Arial's metrics, for the Wine prefix),
# CMake/Ninja, clang with libFuzzer, GoogleTest sources, Google Benchmark
# and RapidJSON (the benchmarks' baseline), and what builds and signs the
# installer (wixl and msitools, osslsigncode, openssl).
set -eu
packages=(cmake ninja-build g++ clang libclang-rt-14-dev googletest libgtest-dev libbenchmark-dev rapidjson-dev
          mingw-w64 g++-mingw-w64-x86-64-posix gcc-mingw-w64-x86-64-posix wine wine64 wine64-tools libwine-dev
          xvfb xauth imagemagick fonts-liberation wixl msitools osslsigncode openssl)
missing=()
for package in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed" || missing+=("$package")
done
if [ "${#missing[@]}" -gt 0 ]; then
  echo "installing: ${missing[*]}"
  sudo_cmd=""
  [ "$(id -u)" -eq 0 ] || sudo_cmd="sudo"
  $sudo_cmd apt-get update -q
  DEBIAN_FRONTEND=noninteractive $sudo_cmd apt-get install -y -q --no-install-recommends "${missing[@]}"
fi
