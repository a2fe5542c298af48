<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<!-- SPDX-FileCopyrightText: 2026 The Marvola authors -->
<!-- SPDX-License-Identifier: MIT -->
<TS version="2.1" language="zh_CN" sourcelanguage="en">
<context>
    <name>MP_MyLibrary</name>
    <message>
        <source>TXT_RID_DTITLE_PHONE</source>
        <comment>Phone</comment>
        <translation>手机</translation>
    </message>
    <message>
        <source>TXT_RID_DTITLE_MEMORY_CARD</source>
        <comment>Memory Card</comment>
        <translation>存储卡</translation>
    </message>
    <message>
        <source>TXT_RID_MENU_UNKNOWN</source>
        <comment>Unknown</comment>
        <translation>未知</translation>
    </message>
</context>
</TS>
