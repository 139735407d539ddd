#pragma once

class AccessibilityTrust;
class Activation;
class Appearance;
class Autostart;
class Background;
class Clock;
class ComputerName;
class DefaultsStore;
class FloatingPanels;
class Folders;
class Graphics;
class HttpTransport;
class KeyPoster;
class KeyTaps;
class LocalKeys;
class Microphone;
class Pasteboard;
class Presence;
class SecretStore;
class SoundPlayer;
class Volumes;
class Workspace;

/// The machine: all that the program asks of it, bundled. Every reference outlives the program's objects.
struct Platform
{
    Clock &clock;
    Folders &folders;
    Volumes &volumes;
    DefaultsStore &defaults;
    SecretStore &secrets;
    ComputerName &computerName;
    Workspace &workspace;
    HttpTransport &http;
    AccessibilityTrust &trust;
    Microphone &microphone;
    SoundPlayer &sounds;
    KeyTaps &keyTaps;
    KeyPoster &keyPoster;
    Pasteboard &pasteboard;
    LocalKeys &localKeys;
    Activation &activation;
    Appearance &appearance;
    FloatingPanels &panels;
    Graphics &graphics;
    Autostart &autostart;
    Background &background;
    Presence &presence;
};
