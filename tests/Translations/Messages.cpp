#include "tests/Translations/Messages.h"

namespace vx::test {

// A no-break space is written as \u00A0, so that it can be seen.
const std::vector<Message>& messages()
{
    static const std::vector<Message> all = {
        // SoftwareUpdateClient
        {"SoftwareUpdateClient",
         "After downloading the package, the installer will automatically exit and "
         "restart your application!",
         "Nach der Installation des Pakets wird die Anwendung automatisch beendet und "
         "neu gestartet!",
         "Après le téléchargement du package, l'installation va quitter automatiquement "
         "et redémarrera l'application\u00A0!"},
        {"SoftwareUpdateClient", "Cancel Install", "Installation abbrechen",
         "Annuler l'installation"},
        {"SoftwareUpdateClient", "Congratulations! Your product is up-to-date!",
         "Herzlichen Glückwunsch! Ihr Produkt ist aktuell!",
         "Félicitations\u00A0! Votre produit est à jour\u00A0!"},
        {"SoftwareUpdateClient", "Download Error", "Download-Fehler",
         "Erreur lors du téléchargement"},
        {"SoftwareUpdateClient", "Downloading package to temporary folder...",
         "Paket wird in den temporären Ordner heruntergeladen...",
         "Téléchargement du package au dossier temporaire en cours..."},
        {"SoftwareUpdateClient", "Error downloading! Http status code %1",
         "Fehler beim Herunterladen! HTTP-Statuscode %1",
         "Erreur lors du téléchargement\u00A0! Code d'état HTTP %1"},
        {"SoftwareUpdateClient", "File Size", "Dateigröße", "Taille du fichier"},
        {"SoftwareUpdateClient", "File Type", "Dateityp", "Type du fichier"},
        {"SoftwareUpdateClient", "Install Package", "Paket installieren", "Installer package"},
        {"SoftwareUpdateClient", "Installation failed", "Installation fehlgeschlagen",
         "L'installation a échouée"},
        {"SoftwareUpdateClient",
         "Installation process failed. If problem persists try manual install.",
         "Die Installation ist fehlgeschlagen. Führen Sie die Installation manuell "
         "durch, wenn das Problem erneut auftritt.",
         "Le processus de l'installation a échoué. Si le problème persiste, veuillez "
         "essayer l'installation manuelle."},
        {"SoftwareUpdateClient", "Languages", "Sprachen", "Langues"},
        {"SoftwareUpdateClient", "Multilingual", "Mehrsprachig", "Multilingue"},
        {"SoftwareUpdateClient", "Name", "Name", "Nom"},
        {"SoftwareUpdateClient", "No update available!", "Kein Update vorhanden!",
         "Aucune mise à jour disponible\u00A0!"},
        {"SoftwareUpdateClient", "Platforms", "Plattformen", "Plateformes"},
        {"SoftwareUpdateClient",
         "Please restart your application to finish the installation process.",
         "Bitte starten Sie die Anwendung neu um die Installation abzuschließen.",
         "Veuillez redémarrer l'application afin de finir le processus de "
         "l'installation."},
        {"SoftwareUpdateClient", "Proceed", "Weiter", "Continuer"},
        {"SoftwareUpdateClient", "Published on %1", "Veröffentlicht am %1", "Publiée le %1"},
        {"SoftwareUpdateClient", "Restart later", "Später neu starten", "Redémarrer plus tard"},
        {"SoftwareUpdateClient", "Restart now", "Jetzt neu starten", "Redémarrer maintenant"},
        {"SoftwareUpdateClient", "Restart required", "Neustart erforderlich",
         "Redémarrage obligatoire"},
        {"SoftwareUpdateClient", "Timeout error! Update server unreachable!",
         "Zeitüberschreitung! Der Update-Server antwortet nicht!",
         "Erreur de délai d'attente\u00A0! Impossible de se connecter au serveur de mise à "
         "jour\u00A0!"},
        {"SoftwareUpdateClient", "Unknown package type! Installation cannot proceed!",
         "Unbekannter Pakettyp! Die Installation kann nicht fortgesetzt werden!",
         "Type de package inconnu\u00A0! Impossible de continuer le processus de "
         "l'installation\u00A0!"},

        // SoftwareUpdateDialogGui
        {"SoftwareUpdateDialogGui", "At application start", "Beim Programmstart",
         "Au démarrage du programme"},
        {"SoftwareUpdateDialogGui", "Check Now", "Jetzt suchen", "Rechercher maintenant"},
        {"SoftwareUpdateDialogGui", "Check for Updates", "Nach Updates suchen",
         "Rechercher de nouveaux mises à jour"},
        {"SoftwareUpdateDialogGui", "Check for updates:", "Nach Updates suchen:",
         "Rechercher de nouveaux mises à jour\u00A0:"},
        {"SoftwareUpdateDialogGui",
         "Current version:", "Aktuelle Version:", "Version actuelle\u00A0:"},
        {"SoftwareUpdateDialogGui", "Daily", "Täglich", "Tous les jours"},
        {"SoftwareUpdateDialogGui", "Include beta versions", "Beta-Versionen einschließen",
         "Inclure les versions beta"},
        {"SoftwareUpdateDialogGui", "Last check", "Letzte Suche", "Dernière recherche"},
        {"SoftwareUpdateDialogGui", "Monthly", "Monatlich", "Tous les mois"},
        {"SoftwareUpdateDialogGui",
         "Update server URL:", "URL des Update-Servers:", "URL serveur de mise à jour\u00A0:"},
        {"SoftwareUpdateDialogGui", "Weekly", "Wöchentlich", "Toutes les semaines"},
        {"SoftwareUpdateDialogGui", "You can search for new versions manually or automatically.",
         "Sie können manuell oder automatisch nach neuen Versionen suchen.",
         "Vous pouvez rechercher les nouveaux mises à jour manuellement ou "
         "automatiquement."},

        // SoftwareUpdateAvailableGui
        {"SoftwareUpdateAvailableGui", "Download Package", "Paket herunterladen",
         "Télécharger package"},
        {"SoftwareUpdateAvailableGui",
         "For more information and updates visit "
         "<a href =\"http://www.example.com/other/Support/Software-Downloads\">www.example.com</a>",
         "Weitere Informationen und Updates finden Sie auf "
         "<a href "
         "=\"http://www.example.com/ger_DE/Support/Software-Downloads\">www.example.com</a>.",
         "Pour de plus amples informations accédez à la rubrique "
         "<a href "
         "=\"http://www.example.com/other/Support/Software-Downloads\">www.example.com</a>"},
        {"SoftwareUpdateAvailableGui", "Install Package", "Paket installieren",
         "Installer package"},
        {"SoftwareUpdateAvailableGui", "Release Notes", "Versionsübersicht",
         "Notes de publication"},
        {"SoftwareUpdateAvailableGui", "Select Packages from List:",
         "Wählen Sie Pakete aus der Liste aus:", "Sélectionner des packages de la liste\u00A0:"},
        {"SoftwareUpdateAvailableGui", "Show all languages", "Alle Sprachen anzeigen",
         "Afficher tous les langues"},
        {"SoftwareUpdateAvailableGui", "Update Available", "Update verfügbar",
         "Mise à jour disponible"},
        {"SoftwareUpdateAvailableGui", "Update Settings...", "Update-Einstellungen...",
         "Paramètres de mise à jour..."},
        {"SoftwareUpdateAvailableGui",
         "You can download and install the package manually or start the installation "
         "immediately (only available for supported package types).",
         "Sie können das Paket manuell herunterladen und installieren oder die "
         "Installation sofort starten (nur verfügbar für unterstützte Pakettypen).",
         "Vous pouvez télécharger et installer le package manuellement ou démarrer "
         "l'installation immédiatement (seulement pour les types de package supportés)."},

        // DownloadManager
        {"DownloadManager", "Downloaded file could not be unpacked:<br>",
         "Die heruntergeladene Datei konnte nicht entpackt werden:<br>",
         "Impossible de décompresser le fichier téléchargé\u00A0:<br>"},
        {"DownloadManager", "Select Installation Path for '%1'",
         "Installationsordner für '%1' auswählen",
         "Sélectionner le dossier d'installation pour '%1'"},
        {"DownloadManager", "Unpacking '%1'", "'%1' wird entpackt", "Décompresser '%1'"},
    };
    return all;
}

QString Message::in(const QString& language) const
{
    if (language == QLatin1String("de")) {
        return QString::fromUtf8(german);
    }
    return language == QLatin1String("fr") ? QString::fromUtf8(french) : QString::fromUtf8(source);
}

QString translated(const char* context, const char* source, const QString& language)
{
    for (const Message& message : messages()) {
        if (qstrcmp(message.context, context) == 0 && qstrcmp(message.source, source) == 0) {
            return message.in(language);
        }
    }
    return {};
}

} // namespace vx::test
