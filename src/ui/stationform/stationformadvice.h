#pragma once

#include <QString>
#include <optional>

/// The contents of the form for a station of the user's own, as typed.
struct StationFormValues
{
    QString url;
    QString port;
    QString mountpoint;
    QString scheme;
    QString username;
    QString password;
    bool isPrivate = false;

    friend bool operator==(const StationFormValues &, const StationFormValues &) = default;
};

/// What a form may say beside its fields, to help a station to play. It forbids nothing.
struct StationFormAdvice
{
    enum class Hint {
        None,
        /// Blanks around the address, which cannot be seen.
        Blanks,
        /// The address lacks "http://" or "https://", or a server that can be asked.
        NoServer,
        /// The address of a public station holds a user name.
        UserInPublicAddress,
        /// The address of a private station holds more than its server: what is played comes from the fields.
        WholeAddress,
        /// No whole number from 1 to 65535.
        PortNoNumber,
        /// The mount point does not begin with a slash.
        MountpointNoSlash,
        /// A public station's port would end up behind one that the address has, or behind its last slash.
        PortInPublicAddress,
        /// A public station's port would end up in the path of its stream, or would be ignored.
        PathInPublicAddress,
        /// A private station has nothing but its field to take the port from.
        PortMissing,
        /// A private station whose scheme is neither http nor https.
        SchemeUnknown,
        /// A private station would be played by http although its address says https.
        SchemeMissing,
        /// A user name or a password that a public station does not send.
        CredentialsUnused,
    };

    Hint hint = Hint::None;
    /// The form in which the same station plays, where that is known.
    std::optional<StationFormValues> remedy;
};

/// What is most useful to say about a form that is being filled in. Nothing about what has not been begun,
/// nor about the first letters of an address.
///
/// A public station is played from its address, its mount point, ":" and its port, one after the other. So a
/// path keeps its name only if what comes behind it is in the query, where servers ignore it: the remedy is
/// one whole address that ends in "?" or "&", with no port in the field. A private station is played from its
/// fields, and only the query of its address counts beside the server's name; the mount point lands behind
/// that query, which therefore ends in "&".
StationFormAdvice adviceFor(const StationFormValues &form);
