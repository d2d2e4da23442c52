<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr_FR" sourcelanguage="en">
<context>
    <name>UpdateTrust</name>
    <message>
        <source>The list of updates is not signed, so it was not used.</source>
        <translation>La liste des mises à jour n'est pas signée ; elle n'a donc pas été utilisée.</translation>
    </message>
    <message>
        <source>The signature of the list of updates cannot be read, so the list was not used.</source>
        <translation>La signature de la liste des mises à jour est illisible ; la liste n'a donc pas été utilisée.</translation>
    </message>
    <message>
        <source>The list of updates is signed with an unknown key, so it was not used.</source>
        <translation>La liste des mises à jour est signée avec une clé inconnue ; elle n'a donc pas été utilisée.</translation>
    </message>
    <message>
        <source>The list of updates was changed after it was signed, so it was not used.</source>
        <translation>La liste des mises à jour a été modifiée après sa signature ; elle n'a donc pas été utilisée.</translation>
    </message>
    <message>
        <source>Something was added behind the signature of the list of updates, so the list was not used.</source>
        <translation>Quelque chose a été ajouté après la signature de la liste des mises à jour ; la liste n'a donc pas été utilisée.</translation>
    </message>
    <message>
        <source>The list of updates is older than one that was received before, so it was not used.</source>
        <translation>La liste des mises à jour est plus ancienne qu'une liste déjà reçue ; elle n'a donc pas été utilisée.</translation>
    </message>
    <message>
        <source>The list of updates has expired, so it was not used. Please check the date of this computer, or try again later.</source>
        <translation>La liste des mises à jour a expiré ; elle n'a donc pas été utilisée. Veuillez vérifier la date de cet ordinateur ou réessayer plus tard.</translation>
    </message>
    <message>
        <source>The list of updates is dated in the future, so it was not used. Please check the date of this computer.</source>
        <translation>La liste des mises à jour porte une date future ; elle n'a donc pas été utilisée. Veuillez vérifier la date de cet ordinateur.</translation>
    </message>
    <message>
        <source>Verifying the downloaded package...</source>
        <translation>Vérification du package téléchargé en cours...</translation>
    </message>
    <message>
        <source>Package not installed</source>
        <translation>Package non installé</translation>
    </message>
    <message>
        <source>The downloaded package is not the one that its publisher announced. It was removed, and nothing was installed.</source>
        <translation>Le package téléchargé n'est pas celui que son éditeur a annoncé. Il a été supprimé et rien n'a été installé.</translation>
    </message>
    <message>
        <source>The downloaded package cannot be verified, because its publisher did not announce its contents. It was removed, and nothing was installed.</source>
        <translation>Le package téléchargé ne peut pas être vérifié, car son éditeur n'en a pas annoncé le contenu. Il a été supprimé et rien n'a été installé.</translation>
    </message>
</context>
</TS>
