-- Which machines have system firmware below a version?
--
-- Set: product, a pattern of LIKE ('%' is any), since versions of different products say nothing about each other;
-- and version, numbers with dots between them.
--
-- Compared is the version if it is made of numbers and dots, else the release that SMBIOS has as two numbers. 2.9 is
-- below 2.10, and 2.10 is the same as 2.10.0. Numbers have up to nine digits. Where there is neither, the answer is
-- "not known": look at the versions yourself. So it is everywhere if version is set to anything else.

WITH RECURSIVE parameters AS (SELECT '%' AS product, '2.10' AS version),
  latest AS (SELECT h.name AS machine, r.* FROM host h JOIN run r ON r.id =
    (SELECT max(n.id) FROM run n WHERE n.host_id = h.id AND n.collected_at = h.last_seen)),
  firmware AS (SELECT l.machine, c.manufacturer, c.product_name, b.version, b.firmware_release, b.release_date,
      CASE WHEN ltrim(b.version, '0123456789.') = '' AND trim(b.version, '.') <> '' THEN b.version
           WHEN ltrim(b.firmware_release, '0123456789.') = '' THEN b.firmware_release END AS compared
    FROM latest l JOIN system_bios_element b ON b.run_id = l.id LEFT JOIN computer_system c ON c.run_id = l.id),
  -- Each number gets leading zeros, and what is left of 2.10 and 2.10.0 without the last zeros is the same.
  reading(version, rest, number, sorted) AS (
    SELECT version, version || '.', '', ''
    FROM (SELECT compared AS version FROM firmware UNION SELECT version FROM parameters) v
    UNION ALL
    SELECT version, substr(rest, 2), CASE WHEN substr(rest, 1, 1) = '.' THEN '' ELSE number || substr(rest, 1, 1) END,
      CASE WHEN substr(rest, 1, 1) = '.' THEN sorted || substr('000000000', 1 + length(number)) || number
        ELSE sorted END
    FROM reading WHERE rest <> ''),
  sorting AS (SELECT version, rtrim(sorted, '0') AS sorted FROM reading WHERE rest = '')
SELECT f.machine, f.manufacturer, f.product_name, f.version, f.firmware_release, f.release_date,
  CASE WHEN own.sorted < asked.sorted THEN 'below' ELSE 'not known' END AS answer
FROM parameters p CROSS JOIN firmware f
  LEFT JOIN sorting asked ON asked.version = p.version AND ltrim(p.version, '0123456789.') = ''
    AND trim(p.version, '.') <> ''
  LEFT JOIN sorting own ON own.version = f.compared
WHERE lower(coalesce(f.product_name, p.product)) LIKE lower(p.product)
  AND coalesce(own.sorted < asked.sorted, TRUE)
ORDER BY answer, own.sorted, f.machine;

-- For these machines that is not the whole truth.
WITH asked(class) AS (VALUES ('MOLTA_SystemBIOSElement'), ('MOLTA_ComputerSystem')),
  latest AS (SELECT h.name AS machine, r.* FROM host h JOIN run r ON r.id =
    (SELECT max(n.id) FROM run n WHERE n.host_id = h.id AND n.collected_at = h.last_seen))
SELECT l.machine, a.class,
  CASE s.state WHEN 'complete' THEN l.state ELSE coalesce(s.state, 'not known to its plugins') END AS state,
  coalesce(s.reason, l.reason) AS reason
FROM latest l CROSS JOIN asked a LEFT JOIN class_state s ON s.run_id = l.id AND s.class = a.class
WHERE coalesce(s.state, '') <> 'complete' OR l.reason_code IN ('file changed', 'instances lost', 'interrupted')
ORDER BY l.machine, a.class;
