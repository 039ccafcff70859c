-- Which hosts have one identity?
--
-- Hosts that tell the same machine ID, UUID, serial number or name: clones, boards that were never given a number,
-- machines that were renamed. Serial numbers of different manufacturers may be equal by chance. Texts of firmware
-- that say nothing, as "To be filled", are not stored.

WITH told(what, value, host_id) AS (
    SELECT 'machine ID', machine_id, id FROM host UNION ALL SELECT 'UUID', uuid, id FROM host
    UNION ALL SELECT 'serial number', serial, id FROM host UNION ALL SELECT 'name', name, id FROM host),
  counted AS (SELECT what, value, host_id, count(*) OVER (PARTITION BY what, lower(value)) AS hosts
    FROM told WHERE value <> '')
SELECT c.what, lower(c.value) AS value, c.hosts, h.name AS machine, h.first_seen, h.last_seen
FROM counted c JOIN host h ON h.id = c.host_id
WHERE c.hosts > 1
ORDER BY c.what, value, machine, h.last_seen;

-- For these machines that is not the whole truth: they tell nothing but a name, or not all.
SELECT name AS machine, machine_id, uuid, serial FROM host
WHERE coalesce(machine_id, '') = '' OR coalesce(uuid, '') = ''
ORDER BY name;
