// The INF language in examples. The layer's reader is held against them here, and the set-up library of the
// platform that the Windows programs are tested on by acceptance/contract.
#pragma once

#include <cstdint>
#include <string>

struct InfLanguageCase {
    const char* name;
    std::string text;        // behind inf_language_version
    std::string found;       // `[section]`, then `key:value|value;` for each line
    std::uint32_t error = 0; // an SPAPI_E_... code instead
};

inline const std::string inf_language_version = "[Version]\r\nSignature=\"$Windows NT$\"\r\n";

// Which of the sections that there are a 64-bit system installs for the name "Label".
struct InfInstallCase {
    const char* present;
    const char* taken;
};

inline const InfInstallCase inf_install_cases[] = {
    {"[Label]\r\n", "Label"},
    {"[Label]\r\n[Label.NT]\r\n[Label.NTx86]\r\n", "Label.NT"},
    {"[Label.NT]\r\n[label.ntAMD64]\r\n[Label]\r\n", "Label.NTamd64"},
};

inline const InfLanguageCase inf_language_cases[] = {
    {"comments and blanks", "; note\r\n [One] ; note\r\n\tkey = a , b ; note\r\n\r\n", "[One]key:a|b;"},
    {"quotes", "[One]\r\nkey=\"b;c\",\" d \",\"say \"\"hi\"\"\",x\"y z\"w,'1'\r\n\"a=b\"=c\r\n",
     "[One]key:b;c| d |say \"hi\"|xy zw|'1';a=b:c;"},
    {"an open quote", "[One]\r\nkey=a,\"open ; quote\nnext=1\r\n", "[One]key:a|open ; quote;next:1;"},
    {"equals and commas", "[One]\r\na=b=c\r\na=,\r\na=\r\nx,y=z\r\nalone\r\n",
     "[One]a:b=c;a:|;a:;:x|y=z;:alone;"},
    {"joined lines", "[One]\r\na=x,\\ ; note\r\n  y\r\nb=x\\\r\n[Two]\r\nd=x,\\\r\n\r\ny=1\r\n",
     "[One]a:x|y;b:x[Two];d:x|;y:1;"},
    {"backslashes at the end", "[One]\r\nc=\"x\\\"\\\r\n,y\r\ne=f\\\\\r\n,g\r\n", "[One]c:x\\|y;e:f|g;"},
    {"joined sections", "[One]\r\na=1\r\n[Two]\r\nb=2\r\n[one]\r\na=3\r\n", "[One]a:1;a:3;[Two]b:2;"},
    {"odd headers", "[ One ]\r\na=1\r\n[;; Std Mfg]\r\nb=1\r\n[\"q;r\"]\r\nc=1\r\n[x]rest\r\nd=1\r\n",
     "[ One ]a:1;[;; Std Mfg]b:1;[\"q;r\"]c:1;[x]d:1;"},
    {"end of file", "[One]\r\na=1\r\n\x1A[broken\r\n", "[One]a:1;"},
    {"open header", "[One\r\n", "", 0x800F0001},
    {"long header", "[" + std::string(256, 'n') + "]\r\n", "", 0x800F0002},
    {"longest header", "[" + std::string(255, 'n') + "]\r\na=1\r\n", "[" + std::string(255, 'n') + "]a:1;"},
};
