#pragma once
// Text shaped like what a user's synced folder gives: long Windows paths,
// identifiers, names, time stamps.
#include <cstddef>
#include <string>

// The full path of the i-th open document.
std::wstring DocumentPath(std::size_t i);

// One answer object for document i carrying all twenty keys. `variant`
// switches many of the values (owner, time, flags, download text, users)
// so that two variants differ in most fields.
std::wstring AnswerObjectText(std::size_t i, int variant);

// {"resp":[...]} with `count` objects.
std::wstring AnswerText(std::size_t count);
